#include "base/Language.h"

#include "base/Catalogue.h"
#include "base/EmbeddedCatalogues.h"

#include <cctype>

namespace tvx {
namespace {

Language g_language = Language::Japanese;

struct Known {
    Language language;
    const char* code;
    const char* name;
};
constexpr std::array kKnown{
    Known{Language::Japanese, "ja", "日本語"},
    Known{Language::English, "en", "English"},
    Known{Language::Korean, "ko", "한국어"},
};

const Known& known(Language language)
{
    return kKnown[static_cast<std::size_t>(language)];
}

// Read once, at the first text of the language, and kept: the windows hold its pointers.
const Catalogue& catalogue(Language language)
{
    static std::array<std::optional<Catalogue>, kKnown.size()> loaded;
    std::optional<Catalogue>& slot = loaded[static_cast<std::size_t>(language)];
    if (!slot)
        slot = parsePo(embeddedPo(language));
    return *slot;
}

} // namespace

const char* languageCode(Language language)
{
    return known(language).code;
}

std::optional<Language> languageFromCode(std::string_view code)
{
    for (const Known& k : kKnown)
        if (code == k.code)
            return k.language;
    return std::nullopt;
}

const char* languageName(Language language)
{
    return known(language).name;
}

Language languageOfLocale(std::string_view locale)
{
    const std::size_t end = locale.find_first_of("_-.@");
    std::string code;
    for (char c : locale.substr(0, end))
        code += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (code.empty() || code == "c" || code == "posix")
        return Language::Japanese;
    return languageFromCode(code).value_or(Language::English);
}

void setLanguage(Language language)
{
    g_language = language;
}

Language currentLanguage()
{
    return g_language;
}

const char* tr(const char* japanese)
{
    if (japanese == nullptr)
        return japanese;
    const std::string_view shown = tr(std::string_view(japanese));
    // Either the text itself (or its end, after a context) or a catalogue entry: both end in NUL.
    return shown.data();
}

std::string_view tr(std::string_view japanese)
{
    if (g_language != Language::Japanese) {
        const Catalogue& texts = catalogue(g_language);
        const auto found = texts.find(std::string(japanese));
        if (found != texts.end())
            return found->second;
    }
    const std::size_t context = japanese.find('\x04');
    return context == std::string_view::npos ? japanese : japanese.substr(context + 1);
}

std::string crlf(std::string_view text)
{
    std::string out;
    out.reserve(text.size() + 8);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n' && (i == 0 || text[i - 1] != '\r'))
            out += '\r';
        out += text[i];
    }
    return out;
}

std::string trFormat(const char* japanese, std::initializer_list<std::string_view> arguments)
{
    const std::string_view pattern = tr(japanese);
    std::string text;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const char digit = i + 1 < pattern.size() ? pattern[i + 1] : '\0';
        const std::size_t index = static_cast<std::size_t>(digit - '1');
        if (pattern[i] == '%' && digit >= '1' && digit <= '9' && index < arguments.size()) {
            text += arguments.begin()[index];
            ++i;
        } else {
            text += pattern[i];
        }
    }
    return text;
}

} // namespace tvx
