// Basic types: money amounts that never wrap, the catalogue's PO reader and texts, the language.
#include "base/Catalogue.h"
#include "base/Currency.h"
#include "base/Errors.h"
#include "base/Language.h"
#include "config/Settings.h"
#include "support/ExpectError.h"
#include "view/MainMenu.h"

#include <gtest/gtest.h>

#include <limits>

namespace tvx {
namespace {

TEST(Currency, ParsesDecimalTextExactly)
{
    struct Case { const char* text; std::optional<std::int64_t> raw; };
    for (const Case& c : {Case{"0", 0}, Case{"-1", -10000}, Case{"12.5", 125000}, Case{".5", 5000}, Case{"1.23456", 12346},
                          Case{"1.23455", 12346}, Case{"1.23465", 12346}, Case{"1.234651", 12347},
                          Case{"922337203685477", 9223372036854770000}, Case{"", std::nullopt}, Case{"-", std::nullopt},
                          Case{"12a", std::nullopt}, Case{"1,000", std::nullopt}, Case{"1.2.3", std::nullopt}}) {
        const auto parsed = Currency::parse(c.text);
        EXPECT_EQ(parsed ? std::optional(parsed->raw()) : std::nullopt, c.raw) << c.text;
    }
    EXPECT_THROW(Currency::parse("922337203685478"), RuntimeError);
    EXPECT_THROW(Currency::parse("99999999999999999999"), RuntimeError);
}

TEST(Currency, StoredDivisionsRoundHalfToEvenAndIntRoundsDown)
{
    struct Case { double value; std::int64_t rounded, floored; }; // rounded: raw, four decimals; floored: whole
    for (const Case& c : {Case{1.03125, 10312, 1}, Case{1.09375, 10938, 1}, Case{-1.03125, -10312, -2},
                          Case{-2.0 / 3.0, -6667, -1}, Case{-0.1, -1000, -1}, Case{-3.0, -30000, -3}}) {
        EXPECT_EQ(Currency::fromDouble(c.value).raw(), c.rounded) << c.value;
        EXPECT_EQ(Currency::intOf(c.value).wholePart(), c.floored) << c.value;
        EXPECT_EQ(Currency::fromDouble(c.value).floor().raw(), c.floored * 10000) << c.value;
    }
}

TEST(Currency, OverflowIsReportedNotWrapped)
{
    const Currency top = Currency::fromRaw(std::numeric_limits<std::int64_t>::max());
    const Currency bottom = Currency::fromRaw(std::numeric_limits<std::int64_t>::min());
    const auto expectOverflow = [](auto&& operation) { test::expectError(ErrorNumber::Overflow, operation); };
    expectOverflow([&] { return top + Currency::fromRaw(1); });
    expectOverflow([&] { return bottom - Currency::fromRaw(1); });
    expectOverflow([&] { return -bottom; });
    expectOverflow([] { return Currency::fromInt(std::int64_t{1} << 60); });
    expectOverflow([] { return Currency::fromDouble(1e16); });
    expectOverflow([] { return Currency::intOf(std::numeric_limits<double>::infinity()); });
    expectOverflow([] { return Currency::fromDouble(std::numeric_limits<double>::quiet_NaN()); });
    Currency kept = top;
    EXPECT_THROW(kept += Currency::fromRaw(5), RuntimeError);
    EXPECT_EQ(kept, top);
}

class LanguageTest : public testing::Test {
protected:
    void TearDown() override { setLanguage(Language::Japanese); }
};

TEST(PoReader, TakesTranslatedEntriesOnlyAndStopsAtALineItCannotRead)
{
    const std::string po = "\xEF\xBB\xBF# comment\r\n"
                           "msgid \"\"\r\nmsgstr \"Language: en\\n\"\r\n\r\n"
                           "#: src/a.cpp\nmsgid \"開始\"\nmsgstr \"Start\"\n\n"
                           "msgid \"\"\n\"二行\"\n\"の文\"\nmsgstr \"\"\n\"Two \"\n\"lines\"\n\n"
                           "msgid \"引用\\\"と\\\\改行\\r\\n\\x41\\102\"\nmsgstr \"quote\\\"and\\\\newline\\r\\n\"\n\n"
                           "#, fuzzy\nmsgid \"曖昧\"\nmsgstr \"vague\"\n\n"
                           "#, qt-format\nmsgid \"%1分\"\nmsgstr \"%1 min\"\n\n"
                           "msgid \"未訳\"\nmsgstr \"\"\n\n"
                           "msgctxt \"menu\"\nmsgid \"停止\"\nmsgstr \"Stop\"\n\n"
                           "msgid \"一つ\"\nmsgid_plural \"複数\"\nmsgstr[0] \"one\"\nmsgstr[1] \"many\"\n\n"
                           "#~ msgid \"古い\"\n#~ msgstr \"old\"\n";
    std::string error;
    const Catalogue read = parsePo(po, &error);
    EXPECT_EQ(error, "");
    EXPECT_EQ(read, (Catalogue{{"開始", "Start"}, {"二行の文", "Two lines"}, {"引用\"と\\改行\r\nAB", "quote\"and\\newline\r\n"},
                               {"%1分", "%1 min"}, {"menu\x04停止", "Stop"}}));

    struct Bad { const char* text; const char* line; };
    for (const Bad& bad : {Bad{"msgid \"閉じ\nmsgstr \"x\"\n", "line 4 "}, Bad{"msgid \"a\"\nmsgstr \"b\\q\"\n", "line 5 "},
                           Bad{"msgid \"a\" x\n", "line 4 "}, Bad{"garbage\n", "line 4 "},
                           Bad{"msgid \"a\\\"\n", "line 4 "}}) {
        error.clear();
        const Catalogue partial = parsePo("msgid \"前\"\nmsgstr \"before\"\n\n" + std::string(bad.text), &error);
        EXPECT_EQ(partial, (Catalogue{{"前", "before"}})) << bad.text;
        EXPECT_TRUE(error.starts_with(bad.line)) << bad.text << error;
    }
}

TEST_F(LanguageTest, TextsArePutInByNumberInTheLanguageALocaleOrTheConfigurationNames)
{
    EXPECT_EQ(trFormat("%2から%1へ%3", {"a", "b"}), "bからaへ%3");
    EXPECT_EQ(trFormat("100%の%1", {"x"}), "100%のx");
    const char* untranslated = "どの言語にも無い文";
    for (Language language : kLanguages) {
        setLanguage(language);
        EXPECT_EQ(tr(untranslated), untranslated);
        EXPECT_STREQ(tr(NC_("どこか", "どの言語にも無い文")), untranslated) << "shown without its context";
        EXPECT_EQ(tr(static_cast<const char*>(nullptr)), nullptr);
    }
    // One Japanese text, two meanings, two translations.
    setLanguage(Language::English);
    EXPECT_EQ(menuItem(MenuCommand::End).text(), "Exit");
    EXPECT_STREQ(tr("終了"), "End");

    struct Case { const char* locale; Language language; };
    for (const Case& c : {Case{"ja_JP.UTF-8", Language::Japanese}, Case{"KO_kr.eucKR", Language::Korean},
                          Case{"en_GB.UTF-8", Language::English}, Case{"de-DE", Language::English},
                          Case{"", Language::Japanese}, Case{"POSIX", Language::Japanese}, Case{"C.UTF-8", Language::Japanese}})
        EXPECT_EQ(languageOfLocale(c.locale), c.language) << c.locale;

    struct Configured { const char* stored; const char* locale; const char* kept; Language current; };
    for (const Configured& c : {Configured{"", "ko_KR.UTF-8", "ko", Language::Korean},
                                Configured{"en", "ko_KR.UTF-8", "en", Language::English},
                                Configured{"xx", "en_US", "en", Language::English}}) {
        Settings settings;
        settings.UiLanguage = c.stored;
        applyLanguage(settings, c.locale);
        EXPECT_EQ(settings.UiLanguage, c.kept) << c.stored << " " << c.locale;
        EXPECT_EQ(currentLanguage(), c.current) << c.stored << " " << c.locale;
    }
    for (Language language : kLanguages)
        EXPECT_EQ(languageFromCode(languageCode(language)), language);
    EXPECT_EQ(languageFromCode("jp"), std::nullopt);
}

} // namespace
} // namespace tvx
