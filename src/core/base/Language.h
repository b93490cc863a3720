#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace tvx {

// The languages of the windows. Japanese texts are the catalogue's keys: they are written in
// the code as they are shown, and the other languages are looked up by them.
enum class Language : std::uint8_t { Japanese, English, Korean };

inline constexpr std::array kLanguages{Language::Japanese, Language::English, Language::Korean};

// "ja", "en", "ko": what the configuration file stores.
const char* languageCode(Language language);
std::optional<Language> languageFromCode(std::string_view code);
// Each language's name in itself, as the language list shows it.
const char* languageName(Language language);
// The language for a system locale ("ko_KR.UTF-8", "en-US", "ja"): Japanese and Korean
// locales get their language, any other named language English, and no locale at all
// ("", "C", "POSIX") the default, Japanese.
Language languageOfLocale(std::string_view locale);

// The language texts are looked up in; Japanese until set.
void setLanguage(Language language);
Language currentLanguage();

// A text in the current language: its translation, or the Japanese text itself when the
// catalogue has none. The pointer stays valid for the whole run.
const char* tr(const char* japanese);
// The same for a text held as a view (a marked constant); the view stays valid as long as
// the text it was given.
std::string_view tr(std::string_view japanese);
// A text with %1 ... %9 put in, in the current language.
std::string trFormat(const char* japanese, std::initializer_list<std::string_view> arguments);

// Texts of the catalogue break lines with "\n"; message boxes and the log box take CR LF.
std::string crlf(std::string_view text);

// Marks a text for the catalogue where it is kept untranslated (a table of captions), to be
// passed through tr() where it is shown.
constexpr const char* N_(const char* japanese)
{
    return japanese;
}

// A text that another place shows with another meaning ("終了": the File menu's Exit, the
// account's End) is marked with a context, kept before it and a '\x04' as gettext does, so
// that each has its own translation. tr() drops the context from what it shows.
#define NC_(context, japanese) context "\x04" japanese

} // namespace tvx
