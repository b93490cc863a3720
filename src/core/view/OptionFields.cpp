#include "view/OptionFields.h"

#include <algorithm>
#include <cstdlib>

namespace tvx {
namespace {

using Tab = OptionTab;

template <std::int32_t CaptureRegionRect::*Member>
std::int32_t& regionValue(Settings& s, int r)
{
    return s.CaptureRegion[static_cast<std::size_t>(r)].*Member;
}

std::int32_t& thresholdOf(Settings& s, int r)
{
    return s.BinaryThreshold[static_cast<std::size_t>(r)];
}

std::int32_t& maskOf(Settings& s, int r)
{
    return s.BinaryMask[static_cast<std::size_t>(r)];
}

std::int32_t& cellWidthOf(Settings& s, int r)
{
    return s.ReferenceSize[static_cast<std::size_t>(r)].Width;
}

std::int32_t& cellHeightOf(Settings& s, int r)
{
    return s.ReferenceSize[static_cast<std::size_t>(r)].Height;
}

template <std::int32_t Settings::*Member>
std::int32_t& plainValue(Settings& s, int)
{
    return s.*Member;
}

template <bool Settings::*Member>
bool& flagValue(Settings& s)
{
    return s.*Member;
}

template <std::size_t Entry>
bool& startUpEnabled(Settings& s)
{
    return s.StartUp[Entry].Enabled;
}

template <std::size_t Entry>
std::string& startUpPath(Settings& s)
{
    return s.StartUp[Entry].Path;
}

template <std::string Settings::*Member>
std::string& textValue(Settings& s)
{
    return s.*Member;
}

std::vector<NumberField> makeNumberFields()
{
    struct RegionField {
        const char* name;
        const char* caption;
        const char* prompt;
        std::int32_t lower;
        std::int32_t upper;
        std::int32_t& (*value)(Settings&, int);
    };
    const RegionField perRegion[] = {
        {"cmdStartX", N_("始点 X"), N_("キャプチャー始点X値を入力してください"), 0, 9999, &regionValue<&CaptureRegionRect::StartX>},
        {"cmdStartY", N_("始点 Y"), N_("キャプチャー始点Y値を入力してください"), 0, 9999, &regionValue<&CaptureRegionRect::StartY>},
        {"cmdSizeX", N_("幅"), N_("キャプチャー幅を入力してください"), 1, 2000, &regionValue<&CaptureRegionRect::SizeX>},
        {"cmdSizeY", N_("高さ"), N_("キャプチャー高さを入力してください（16まで）"), 1, 16,
         &regionValue<&CaptureRegionRect::SizeY>},
        {"cmdBinaryThreshold", N_("２値化境界値"), N_("画像２値化境界値を入力してください"), 0, 255, &thresholdOf},
        {"cmdBinaryMask", N_("マスク値"), N_("マスク値を入力してください（-1 はマスクなし）"), -1, 255, &maskOf},
        {"cmdReferenceWidth", N_("基準幅"), N_("基準画像の幅（列数）を入力してください"), 1, 64, &cellWidthOf},
        {"cmdReferenceHeight", N_("基準高さ"), N_("基準画像の高さを入力してください"), 1, 16, &cellHeightOf},
    };
    std::vector<NumberField> fields;
    for (int r = 0; r < kRegionCount; ++r) {
        int order = 0;
        for (const RegionField& f : perRegion)
            fields.push_back({f.name + std::to_string(r), f.caption, f.prompt, f.lower, f.upper, Tab::Regions, r,
                              order++ / 4, true, f.value});
    }
    const auto plain = [&fields](const char* name, const char* caption, const char* prompt, std::int32_t lower,
                                 std::int32_t upper, Tab tab, int row, std::int32_t& (*value)(Settings&, int)) {
        fields.push_back({name, caption, prompt, lower, upper, tab, -1, row, false, value});
    };
    plain("cmdCaptureInterval", N_("キャプチャインターバル(分)"), N_("キャプチャインターバル(分)を入力してください"), 1, 1440,
          Tab::Timing, 2, &plainValue<&Settings::CaptureInterval>);
    plain("cmdCaptureBeep", N_("キャプチャ時の音（0 で鳴らさない、1～5）"),
          N_("キャプチャ時の音を入力してください（0 で鳴らさない）"), 0, 5, Tab::Timing, 3,
          &plainValue<&Settings::CaptureBeep>);
    plain("cmdLag", N_("キャプチャ調整時間(m秒)"), N_("キャプチャ調整時間(m秒)を入力してください"), 0, 10000, Tab::Timing, 8,
          &plainValue<&Settings::Lag>);
    plain("cmdStartDelay", N_("起動時のゲーム起動確認遅延時間(秒)"), N_("起動確認遅延時間(秒)を入力してください"), 0, 3600,
          Tab::Timing, 5, &plainValue<&Settings::StartDelay>);
    plain("cmdDoHLInterval", N_("撮影チェックインターバル(m秒)"), N_("撮影チェックインターバル(m秒)を入力してください"), 100,
          60000, Tab::Timing, 11, &plainValue<&Settings::DoHLInterval>);
    plain("cmdGestureTime", N_("ジェスチャ入力待ち時間(m秒)"), N_("ジェスチャ入力待ち時間(m秒)を入力してください"), 100, 10000,
          Tab::Timing, 12, &plainValue<&Settings::GestureTime>);
    plain("cmdMoneyWait", N_("お金を認識するときの待機時間(m秒)"), N_("お金を認識するときの待機時間(m秒)を入力してください"), 0,
          60000, Tab::Timing, 9, &plainValue<&Settings::MoneyWait>);
    plain("cmdGraphTimeScale", N_("グラフ時間軸データ数"), N_("グラフ時間軸データ数を入力してください"), 2, 512, Tab::Files, 6,
          &plainValue<&Settings::GraphTimeScale>);
    plain("cmdGraphAveNum", N_("グラフの平均化データ数"), N_("グラフの平均化データ数を入力してください"), 1, 100, Tab::Files,
          7, &plainValue<&Settings::GraphAveNum>);
    plain("cmdStartUpDelay", N_("アプリケーション2を自動起動させる遅延時間(秒)"),
          N_("アプリケーション2を自動起動させる遅延時間(秒)を入力してください"), 0, 3600, Tab::Files, 13,
          &plainValue<&Settings::StartUpDelay>);
    plain("cmdStallMinutes", N_("停滞とみなす時間(分)"), N_("停滞とみなす時間(分)を入力してください"), 1, 600, Tab::Timing, 17,
          &plainValue<&Settings::StallMinutes>);
    return fields;
}

std::string nextLevelWindowText(const Settings& s)
{
    return std::to_string(s.NextLevelWindow);
}

void setNextLevelWindow(Settings& s, const std::string& value)
{
    s.NextLevelWindow = std::atoi(value.c_str());
}

std::string screenCaptureText(const Settings& s)
{
    return std::to_string(static_cast<int>(s.ScreenCapture));
}

void setScreenCapture(Settings& s, const std::string& value)
{
    s.ScreenCapture = value == "1" ? CaptureMethod::PrintScreen : CaptureMethod::Direct;
}

// The configured language, or the one the windows are in while none is configured.
std::string languageText(const Settings& s)
{
    return languageFromCode(s.UiLanguage) ? s.UiLanguage : languageCode(currentLanguage());
}

void setLanguageCode(Settings& s, const std::string& value)
{
    s.UiLanguage = value;
}

std::vector<ChoiceField::Choice> languageChoices()
{
    std::vector<ChoiceField::Choice> choices;
    for (const Language language : kLanguages)
        choices.push_back({languageCode(language), languageName(language)});
    return choices;
}

std::string saveFormatText(const Settings& s)
{
    return s.SaveFormat;
}

void setSaveFormat(Settings& s, const std::string& value)
{
    s.SaveFormat = value;
}

} // namespace

std::string_view optionTabCaption(OptionTab tab)
{
    constexpr std::array<const char*, kOptionTabCount> captions{N_("キャプチャ領域"), N_("認識パターン"), N_("動作"),
                                                                 N_("記録・グラフ・起動")};
    return tr(captions[static_cast<std::size_t>(tab)]);
}

std::string_view regionCaption(int region)
{
    constexpr std::array<const char*, kRegionCount> captions{N_("Lv (1)"), N_("Exp (2)"), N_("マネー (3)")};
    return tr(captions[static_cast<std::size_t>(std::clamp(region, 0, kRegionCount - 1))]);
}

const std::vector<NumberField>& numberFields()
{
    static const std::vector<NumberField> fields = makeNumberFields();
    return fields;
}

const std::vector<FlagField>& flagFields()
{
    static const std::vector<FlagField> fields{
        {"chkAutoStart", N_("起動後に自動で計測を始める"), Tab::Timing, 1, &flagValue<&Settings::AutoStart>},
        {"chkDoHLCheckExec", N_("レベルアップ・死亡時に撮影する"), Tab::Timing, 11, &flagValue<&Settings::DoHLCheckExec>},
        {"chkGesture", N_("マウスボタンジェスチャを監視する"), Tab::Timing, 12, &flagValue<&Settings::Gesture>},
        {"chkMoneyScan", N_("お金の時給も計測する"), Tab::Timing, 9, &flagValue<&Settings::MoneyScan>},
        {"chkGraph", N_("グラフを表示する"), Tab::Files, 6, &flagValue<&Settings::Graph>},
        {"chkSaveCsv", N_("時給ファイルをCSVで保存する"), Tab::Files, 3, &flagValue<&Settings::SaveCsv>},
        {"chkSaveMonthly", N_("時給記録ファイルを一ヶ月追記する"), Tab::Files, 4, &flagValue<&Settings::SaveMonthly>},
        {"chkStartUp0", N_("アプリケーション1を自動起動する"), Tab::Files, 11, &startUpEnabled<0>},
        {"chkStartUp1", N_("アプリケーション2を自動起動する"), Tab::Files, 12, &startUpEnabled<1>},
        {"chkStallAlarm", N_("停滞を音とログで知らせる"), Tab::Timing, 17, &flagValue<&Settings::StallAlarm>},
        // The running meter's switch, not a setting: no value in the settings.
        {"chkDebugMode", N_("デバッグモード"), Tab::Timing, 15, nullptr},
    };
    return fields;
}

const std::vector<TextField>& textFields()
{
    using Browse = TextField::Browse;
    static const std::vector<TextField> fields{
        {"txtSearchWindowName", N_("検索ウィンドウ名"), Tab::Timing, 4, Browse::None, "",
         &textValue<&Settings::SearchWindowName>},
        {"txtSaveFolder", N_("時給ファイル保存場所"), Tab::Files, 1, Browse::Folder, "cmdSaveFolder",
         &textValue<&Settings::SaveFolder>},
        {"txtSaveFile", N_("時給ファイル名"), Tab::Files, 2, Browse::None, "", &textValue<&Settings::SaveFile>},
        {"txtStartUpPath0", "", Tab::Files, 11, Browse::File, "cmdStartUpPath0", &startUpPath<0>},
        {"txtStartUpPath1", "", Tab::Files, 12, Browse::File, "cmdStartUpPath1", &startUpPath<1>},
    };
    return fields;
}

const std::vector<ChoiceField>& choiceFields()
{
    static const std::vector<ChoiceField> fields{
        // The direct copy needs no Lag and leaves the player's clipboard alone.
        {"cboScreenCapture",
         N_("画面の取り込み方法"),
         Tab::Timing,
         7,
         {{"0", N_("直接取り込む（推奨）")}, {"1", N_("PrintScreenキーとクリップボード")}},
         &screenCaptureText,
         &setScreenCapture},
        {"cboSaveFormat",
         N_("画像ファイルの保存形式"),
         Tab::Files,
         9,
         {{".bmp", "BMP (.bmp)"}, {".png", "PNG (.png)"}, {".jpg70", N_("JPEG 品質70 (.jpg)")}, {".jpg90", N_("JPEG 品質90 (.jpg)")}},
         &saveFormatText,
         &setSaveFormat},
        {"cboNextLevelWindow",
         N_("次のレベルまでの時間に使う時給"),
         Tab::Timing,
         18,
         {{"10", N_("直近10分")}, {"30", N_("直近30分")}, {"60", N_("直近60分")}, {"0", N_("セッション全体")}},
         &nextLevelWindowText,
         &setNextLevelWindow},
        // Applied when the window closes: the windows opened afterwards are in it.
        {"cboLanguage", N_("言語"), Tab::Timing, 14, languageChoices(), &languageText, &setLanguageCode, true},
    };
    return fields;
}

std::string_view OptionRow::caption() const
{
    if (number)
        return number->caption;
    if (text)
        return text->caption;
    if (choice)
        return choice->caption;
    return {};
}

namespace {

struct Heading {
    Tab tab;
    int row;
    const char* caption;
};

constexpr Heading kHeadings[] = {
    {Tab::Timing, 0, N_("計測")},         {Tab::Timing, 6, N_("画面の取り込み")}, {Tab::Timing, 10, N_("撮影・ジェスチャ")},
    {Tab::Timing, 13, N_("その他")},   {Tab::Timing, 16, N_("ライブ表示")},  {Tab::Files, 0, N_("時給記録")},
    {Tab::Files, 5, N_("グラフ")},     {Tab::Files, 8, N_("画像ファイル")},  {Tab::Files, 10, N_("自動起動")},
};

} // namespace

std::vector<OptionRow> optionRows(OptionTab tab)
{
    std::vector<OptionRow> rows;
    const auto at = [&rows](int row) -> OptionRow& {
        if (static_cast<int>(rows.size()) <= row)
            rows.resize(static_cast<std::size_t>(row) + 1);
        return rows[static_cast<std::size_t>(row)];
    };
    for (const NumberField& f : numberFields())
        if (f.tab == tab && f.region < 0)
            at(f.row).number = &f;
    for (const FlagField& f : flagFields())
        if (f.tab == tab)
            at(f.row).flag = &f;
    for (const TextField& f : textFields())
        if (f.tab == tab)
            at(f.row).text = &f;
    for (const ChoiceField& f : choiceFields())
        if (f.tab == tab)
            at(f.row).choice = &f;
    for (const Heading& h : kHeadings)
        if (h.tab == tab)
            at(h.row).heading = tr(h.caption);
    return rows;
}

std::vector<const NumberField*> regionFields(int region)
{
    std::vector<const NumberField*> fields;
    for (const NumberField& f : numberFields())
        if (f.region == region)
            fields.push_back(&f);
    return fields;
}

std::vector<ChoiceField::Choice> choicesFor(const ChoiceField& field, const Settings& settings)
{
    std::vector<ChoiceField::Choice> choices = field.choices;
    if (!field.ownNames)
        for (ChoiceField::Choice& choice : choices)
            choice.caption = tr(choice.caption.c_str());
    const std::string current = field.get(settings);
    const bool known = std::any_of(choices.begin(), choices.end(),
                                   [&current](const ChoiceField::Choice& c) { return c.value == current; });
    if (!known) // a hand-edited value stays selectable as it is
        choices.push_back({current, current});
    return choices;
}

std::size_t chosenIndex(const ChoiceField& field, const Settings& settings)
{
    const std::vector<ChoiceField::Choice> choices = choicesFor(field, settings);
    const std::string current = field.get(settings);
    for (std::size_t i = 0; i < choices.size(); ++i)
        if (choices[i].value == current)
            return i;
    return 0;
}

} // namespace tvx
