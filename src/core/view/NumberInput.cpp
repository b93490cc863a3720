#include "view/NumberInput.h"

#include "base/Language.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace tvx {
namespace {

constexpr std::string_view kInvalidCharacters = N_("無効文字が含まれています。");
constexpr std::string_view kCheckTitle = N_("入力チェック");
constexpr std::string_view kBelowLower = N_("入力下限を超えています");
constexpr std::string_view kAboveUpper = N_("入力上限を超えています");
constexpr std::string_view kErrorTitle = N_("入力エラー");

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

std::size_t digitsFrom(std::string_view text, std::size_t at)
{
    std::size_t end = at;
    while (end < text.size() && isDigit(text[end]))
        ++end;
    return end - at;
}

// Length of the number at the start of text: [+-]digits[.digits] or .digits, then an
// exponent only when it has digits.
std::size_t leadingNumber(std::string_view text)
{
    std::size_t at = 0;
    if (at < text.size() && (text[at] == '+' || text[at] == '-'))
        ++at;
    const std::size_t whole = digitsFrom(text, at);
    at += whole;
    std::size_t fraction = 0;
    if (at < text.size() && text[at] == '.') {
        fraction = digitsFrom(text, at + 1);
        if (whole == 0 && fraction == 0)
            return 0;
        at += 1 + fraction;
    }
    if (whole == 0 && fraction == 0)
        return 0;
    if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        std::size_t exponent = at + 1;
        if (exponent < text.size() && (text[exponent] == '+' || text[exponent] == '-'))
            ++exponent;
        const std::size_t digits = digitsFrom(text, exponent);
        if (digits > 0)
            at = exponent + digits;
    }
    return at;
}

// The next code point of UTF-8 text; an invalid byte reads as U+FFFD.
char32_t nextCodePoint(std::string_view text, std::size_t& at)
{
    const auto lead = static_cast<unsigned char>(text[at++]);
    if (lead < 0x80)
        return lead;
    const int extra = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : -1;
    if (extra < 0 || at + static_cast<std::size_t>(extra) > text.size())
        return U'\uFFFD';
    char32_t code = lead & (0x3Fu >> extra);
    for (int i = 0; i < extra; ++i) {
        const auto next = static_cast<unsigned char>(text[at]);
        if ((next & 0xC0) != 0x80)
            return U'\uFFFD';
        code = (code << 6) | (next & 0x3Fu);
        ++at;
    }
    return code;
}

bool codePasses(char32_t code)
{
    // Compared as decimal texts on purpose: 5 or 500 sort between "48" and "57" and pass.
    const std::string digits = std::to_string(static_cast<std::uint32_t>(code));
    return digits == "32" || digits == "45" || digits == "46" || digits == "69" || digits == "101" ||
           (digits >= "48" && digits <= "57");
}

NumberInput::Warning invalidCharacters()
{
    return {std::string(tr(kInvalidCharacters)), std::string(tr(kCheckTitle)), false};
}

} // namespace

double numericValue(std::string_view text)
{
    std::string compact;
    for (const char c : text)
        if (c != ' ' && c != '\t' && c != '\r' && c != '\n')
            compact += c;
    const std::size_t start = !compact.empty() && compact[0] == '+' ? 1 : 0; // from_chars takes no '+'
    const std::size_t length = leadingNumber(compact);
    if (length == 0)
        return 0;
    double value = 0;
    const std::from_chars_result read = std::from_chars(compact.data() + start, compact.data() + length, value);
    return read.ec == std::errc() ? value : 0;
}

bool passesCharacterCheck(std::string_view utf8)
{
    for (std::size_t at = 0; at < utf8.size();)
        if (!codePasses(nextCodePoint(utf8, at)))
            return false;
    return true;
}

std::string formatInputNumber(double value)
{
    char text[32];
    if (std::isfinite(value) && value == std::trunc(value) && std::fabs(value) < 1e15)
        std::snprintf(text, sizeof text, "%lld", static_cast<long long>(value));
    else
        std::snprintf(text, sizeof text, "%.15g", value);
    return text;
}

void NumberInput::open(std::string_view limitA, std::string_view limitB, double proposed, std::string_view step,
                       std::string prompt, std::string_view title)
{
    const double a = numericValue(limitA);
    const double b = numericValue(limitB);
    m_lower = std::min(a, b);
    m_upper = std::max(a, b);
    m_step = std::fabs(numericValue(step));
    m_prompt = std::move(prompt);
    m_title = title.empty() ? std::string(tr(kDefaultTitle)) : std::string(title);
    m_text = formatInputNumber(proposed);
    m_result = kCancelled;
    m_done = false;
}

std::string NumberInput::lowerText() const
{
    return formatInputNumber(m_lower);
}

std::string NumberInput::upperText() const
{
    return formatInputNumber(m_upper);
}

NumberInput::Key NumberInput::filterKey(char32_t typed)
{
    if (typed == U'\r' || typed == U'\n')
        return Key::FocusEnter; // confirming stays a second, deliberate key press
    constexpr std::u32string_view passing = U"0123456789-.Ee\b\x7F";
    return passing.find(typed) != std::u32string_view::npos ? Key::Pass : Key::Drop;
}

NumberInput::EnterAction NumberInput::enterAction(Focus focus)
{
    switch (focus) {
    case Focus::EnterButton:
        return EnterAction::Confirm;
    case Focus::CancelButton:
        return EnterAction::Cancel;
    case Focus::Input:
    case Focus::StepButton:
        break;
    }
    return EnterAction::FocusEnter;
}

std::optional<NumberInput::Warning> NumberInput::increment()
{
    if (!passesCharacterCheck(m_text))
        return invalidCharacters();
    m_text = formatInputNumber(std::min(numericValue(m_text) + m_step, m_upper));
    return std::nullopt;
}

std::optional<NumberInput::Warning> NumberInput::decrement()
{
    if (!passesCharacterCheck(m_text))
        return invalidCharacters();
    m_text = formatInputNumber(std::max(numericValue(m_text) - m_step, m_lower));
    return std::nullopt;
}

std::optional<NumberInput::Warning> NumberInput::confirm()
{
    if (!passesCharacterCheck(m_text))
        return invalidCharacters();
    const double value = numericValue(m_text);
    if (value < m_lower)
        return Warning{std::string(tr(kBelowLower)), std::string(tr(kErrorTitle)), true};
    if (value > m_upper)
        return Warning{std::string(tr(kAboveUpper)), std::string(tr(kErrorTitle)), true};
    m_result = value;
    m_done = true;
    return std::nullopt;
}

void NumberInput::cancel()
{
    m_result = kCancelled;
    m_done = true;
}

} // namespace tvx
