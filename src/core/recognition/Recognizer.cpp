#include "recognition/Recognizer.h"
#include "base/Language.h"

#include "base/Errors.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <optional>

namespace tvx {
namespace {

// Mid(S, pos, n) with pos counted from 1: shorter or empty past the end of S.
std::string_view mid(std::string_view s, std::int64_t pos, std::int64_t length)
{
    if (pos > static_cast<std::int64_t>(s.size()))
        return {};
    return s.substr(static_cast<std::size_t>(pos - 1), static_cast<std::size_t>(length));
}

struct DigitMatch {
    std::int64_t position; // counted from 1
    int digit;
};

// The leftmost position (counted from 1, below the length of s) at which any digit
// template occurs, with the lowest digit there. This equals taking each template's first
// occurrence and keeping the smallest, but stops as soon as the number begins.
std::optional<DigitMatch> firstDigitMatch(std::string_view s, const PatternSet& patterns, bool skipEmpty)
{
    // An eight-character prefix of each template rejects almost every position at once.
    // Shorter templates compare their first bytes only, which sit low in a little-endian word.
    static_assert(std::endian::native == std::endian::little);
    std::array<std::uint64_t, 10> prefix{};
    std::array<std::uint64_t, 10> prefixMask{};
    for (std::size_t d = 0; d < 10; ++d) {
        const std::string& pattern = patterns[d];
        const std::size_t n = std::min<std::size_t>(pattern.size(), 8);
        std::memcpy(&prefix[d], pattern.data(), n);
        prefixMask[d] = n == 8 ? ~std::uint64_t{0} : (std::uint64_t{1} << (8 * n)) - 1;
    }
    const std::size_t length = s.size();
    for (std::size_t p = 0; p + 1 < length; ++p) {
        std::uint64_t window = 0;
        std::memcpy(&window, s.data() + p, std::min<std::size_t>(8, length - p));
        for (std::size_t d = 0; d < 10; ++d) {
            if ((window & prefixMask[d]) != prefix[d] || (skipEmpty && patterns[d].empty()))
                continue;
            const std::string& pattern = patterns[d];
            if (pattern.size() <= length - p && s.compare(p, pattern.size(), pattern) == 0)
                return DigitMatch{static_cast<std::int64_t>(p) + 1, static_cast<int>(d)};
        }
    }
    return std::nullopt;
}

constexpr std::array<bool, 256> kHexDigit = [] {
    std::array<bool, 256> table{};
    for (char c : std::string_view("0123456789ABCDEF"))
        table[static_cast<unsigned char>(c)] = true;
    return table;
}();

bool wholeTemplate(const std::string& pattern, std::size_t length)
{
    if (pattern.size() != length || length == 0)
        return false;
    bool hex = true;
    for (const char c : pattern)
        hex &= kHexDigit[static_cast<unsigned char>(c)];
    return hex;
}

bool blankColumns(std::string_view groups)
{
    return std::all_of(groups.begin(), groups.end(), [](char c) { return c == '0'; });
}

int firstEmptyTemplate(const PatternSet& patterns)
{
    for (int k = 0; k <= kDelimiterIndex; ++k)
        if (patterns[static_cast<std::size_t>(k)].empty())
            return k;
    return -1;
}

class Progress {
public:
    Progress(int region, bool enabled, CaptionSink* sink, RecognitionResult& result)
        : m_region(region), m_enabled(enabled), m_sink(sink), m_result(result)
    {
    }

    void line(std::string text)
    {
        if (m_enabled)
            m_result.trace.push_back(std::move(text));
    }

    void caption(std::string_view text) const
    {
        if (m_enabled && m_sink)
            m_sink->setCaption(m_region, tr(text));
    }

    void captionSoFar() const
    {
        if (m_enabled && m_sink)
            m_sink->setCaption(m_region, m_result.digits + std::string(tr(kCaptionRecognizing)));
    }

    std::string category() const { return "category" + std::to_string(m_region); }

private:
    int m_region;
    bool m_enabled;
    CaptionSink* m_sink;
    RecognitionResult& m_result;
};

} // namespace

bool wholeTemplateSet(const PatternSet& patterns, std::int32_t glyphWidth)
{
    const auto length = 4 * static_cast<std::size_t>(std::max(glyphWidth, 0));
    // Sizes first: they settle most sets without reading a character.
    if (std::any_of(patterns.begin(), patterns.end(), [length](const std::string& p) { return p.size() != length; }))
        return false;
    return std::all_of(patterns.begin(), patterns.end(), [length](const std::string& p) { return wholeTemplate(p, length); });
}

std::string untaughtTemplates(const PatternSet& patterns, std::int32_t glyphWidth)
{
    const auto length = 4 * static_cast<std::size_t>(std::max(glyphWidth, 0));
    std::string list;
    for (std::size_t k = 0; k < patterns.size(); ++k)
        if (!wholeTemplate(patterns[k], length))
        {
            if (!list.empty())
                list += ' ';
            list += std::to_string(k);
        }
    return list;
}

RecognizerInput recognizerInput(const Settings& settings, int region, std::string_view columnString)
{
    if (region < 0 || region >= kRegionCount)
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return RecognizerInput{columnString, &settings.PatternStrings[static_cast<std::size_t>(region)],
                           settings.ReferenceSize[static_cast<std::size_t>(region)].Width,
                           settings.CaptureRegion[static_cast<std::size_t>(region)].SizeX,
                           settings.Reading[static_cast<std::size_t>(region)].Separator};
}

RecognitionResult RecognizeNumber(int region, const RecognizerInput& input, bool trace, CaptionSink* progressSink)
{
    if (region < 0 || region >= kRegionCount || input.patterns == nullptr)
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    const PatternSet& patterns = *input.patterns;
    const std::string_view s = input.columnString;
    const auto length = static_cast<std::int64_t>(s.size());
    const std::int64_t glyph = 4 * std::int64_t{input.glyphWidth};

    RecognitionResult result;
    Progress progress(region, trace, progressSink, result);
    progress.caption(kCaptionRecognizing);
    progress.line(progress.category() + " 変換データ : " + std::string(s));

    // A set with a template missing cannot tell a digit it lacks from a gap: ink it would
    // step over fails the reading instead of dropping a digit, and an empty template, which
    // is found anywhere, does not start the number. Whole sets walk as always.
    // Whether the set is whole is asked only where ink would be stepped over, which a whole
    // set reading its own glyphs rarely does.
    std::optional<bool> wholeSet;
    const auto whole = [&] {
        if (!wholeSet)
            wholeSet = wholeTemplateSet(patterns, input.glyphWidth);
        return *wholeSet;
    };
    const bool anyEmpty = std::any_of(patterns.begin(), patterns.end(), [](const std::string& p) { return p.empty(); });

    // First search: the leftmost digit template anywhere, not bound to column groups; at
    // equal positions the lower digit wins. A match must start before the last character.
    std::int64_t best = length;
    int firstDigit = 0;
    if (const auto found = firstDigitMatch(s, patterns, anyEmpty)) {
        best = found->position;
        firstDigit = found->digit;
    }
    if (best == length) {
        progress.line(progress.category() + " 数値が見つかりませんでした");
        result.caption = kCaptionNotFound;
        return result;
    }

    const auto untaught = [&] {
        progress.line(" 未学習の文字 ");
        result.digits.clear();
        result.untaught = untaughtTemplates(patterns, input.glyphWidth);
        result.caption = kCaptionFailed;
        return result;
    };
    if (glyph > 0 &&
        ((best - 1) % 4 != 0 || !blankColumns(s.substr(static_cast<std::size_t>(std::max<std::int64_t>(best - 1 - glyph, 0)),
                                                        static_cast<std::size_t>(std::min(best - 1, glyph))))) &&
        !whole())
        return untaught();

    // Walk on the grid the first match set. A glyph touching the right edge is never
    // tried: the delimiter has to start at least one column before it.
    const std::int64_t end = (std::int64_t{input.regionWidth} - input.glyphWidth) * 4;
    const int unmatchedColumns = 0; // occlusion counter, never advanced
    bool delimiterMet = false;
    for (std::int64_t pos = best; pos <= end;) {
        if (glyph < 0)
            throw RuntimeError(ErrorNumber::InvalidProcedureCall);
        if (pos > length) {
            // Past the column data the walk would meet empty candidates up to the end bound,
            // however far that is. They give one outcome: the delimiter is met when its
            // template is the first empty one; an empty digit template would win at every
            // step and never let the delimiter through.
            delimiterMet = firstEmptyTemplate(patterns) == kDelimiterIndex;
            if (delimiterMet)
                progress.line(" 認識:デリミタ");
            break;
        }
        const std::string_view candidate = mid(s, pos, glyph);
        int winner = -1;
        for (int k = pos == best ? firstDigit : 0; k <= kDelimiterIndex; ++k) {
            if (candidate == patterns[static_cast<std::size_t>(k)]) {
                winner = k;
                break;
            }
        }
        if (winner == kDelimiterIndex) {
            progress.line(" 認識:デリミタ");
            delimiterMet = true;
            break;
        }
        if (winner >= 0) {
            // An empty template with no glyph width would never move on.
            if (glyph == 0)
                throw RuntimeError(ErrorNumber::InvalidProcedureCall);
            result.digits += static_cast<char>('0' + winner);
            progress.line(std::to_string(winner) + " 認識:");
            pos += glyph;
        } else if (glyph > 0 && !blankColumns(mid(s, pos, 4)) && !whole()) {
            if (input.separator.empty() || mid(s, pos, static_cast<std::int64_t>(input.separator.size())) != input.separator)
                return untaught();
            pos += static_cast<std::int64_t>(input.separator.size());
        } else {
            if (unmatchedColumns > 16) {
                progress.line(" 遮蔽物検出NG ");
                progress.caption(kCaptionHidden);
                result.digits.clear();
            }
            pos += 4;
        }
        progress.captionSoFar();
    }
    if (!delimiterMet) {
        progress.line(" デリミタ未検出 ");
        result.digits.clear();
    }
    result.caption = result.digits.empty() ? std::string(kCaptionFailed) : result.digits;
    return result;
}

std::string joinTrace(const std::vector<std::string>& trace)
{
    std::string block;
    for (const std::string& line : trace) {
        if (!block.empty())
            block += "\r\n";
        block += line;
    }
    return block;
}

} // namespace tvx
