#include "config/ConfigFile.h"

#include "base/Language.h"
#include "base/CopyOver.h"
#include "base/Utf8Path.h"
#include "config/PatternColumns.h"
#include "config/SettingRanges.h"
#include "shell/TextWidth.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <optional>
#include <sstream>
#include <vector>

namespace tvx {
namespace {

constexpr std::string_view kCrLf = "\r\n";
// What the player is asked and told, in Japanese: shown through tr().
constexpr std::string_view kReadTitle = N_("設定ファイル読込み");
constexpr std::string_view kWriteTitle = N_("設定ファイル書き込み");
constexpr std::string_view kScreenTitle = N_("検査領域追従選択");
constexpr std::string_view kTargetTitle = N_("ターゲット変更選択");
constexpr std::string_view kUnreadable = N_("読込みできない設定ファイルです。");
constexpr std::string_view kRecreate = N_("初期値で設定ファイルを再作成します。");
constexpr std::string_view kBackedUp = N_("以前のファイルは「TV2MConfigBack.ini」で保存されます。");
// Later lines of a message stand indented.
constexpr std::string_view kIndent = "　　";

std::string shown(std::string_view japanese)
{
    return std::string(tr(japanese));
}

std::string damagedText(bool backedUp)
{
    std::string text = shown(kUnreadable) + std::string(kCrLf) + std::string(kIndent) + shown(kRecreate);
    if (backedUp)
        text += std::string(kCrLf) + std::string(kIndent) + shown(kBackedUp);
    return text;
}

constexpr std::array<std::string_view, kRegionCount> kRegionComments{
    " Lvキャプチャ領域(1)、開始座標とサイズ",
    " Expキャプチャ領域(2)、開始座標とサイズ",
    " マネーキャプチャ領域(3)、開始座標とサイズ",
};

std::string flagText(bool value)
{
    return value ? "True" : "False";
}

std::string N(std::int32_t value)
{
    return padField(std::to_string(value));
}

std::string N(bool value)
{
    return padField(flagText(value));
}

std::string N(const std::string& text)
{
    return padField(text);
}

// ---- reading ----

std::string_view trimBlanks(std::string_view text)
{
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos)
        return {};
    const auto last = text.find_last_not_of(" \t");
    return text.substr(first, last - first + 1);
}

bool equalsIgnoringCase(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
        if (lower(a[i]) != lower(b[i]))
            return false;
    }
    return true;
}

std::int32_t parseInteger(std::string_view field)
{
    std::string_view text = trimBlanks(field);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    std::int32_t value = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec == std::errc::result_out_of_range)
        throw RuntimeError(ErrorNumber::Overflow, std::string(field));
    if (text.empty() || ec != std::errc{} || end != text.data() + text.size())
        throw RuntimeError(ErrorNumber::TypeMismatch, std::string(field));
    return value;
}

// "True", "False" in any case (also as "#TRUE#"), or a number where only zero is false.
bool parseFlag(std::string_view field)
{
    const std::string_view text = trimBlanks(field);
    if (equalsIgnoringCase(text, "True") || equalsIgnoringCase(text, "#TRUE#"))
        return true;
    if (equalsIgnoringCase(text, "False") || equalsIgnoringCase(text, "#FALSE#"))
        return false;
    return parseInteger(text) != 0;
}

// The file as lines of comma-separated fields. Every line holds its values, then its
// comment in a field that is skipped; a line without the comment is accepted. There is
// no quoting, so a comma inside a text splits it.
class FieldReader {
public:
    explicit FieldReader(std::string_view text)
    {
        std::size_t start = 0;
        while (start < text.size()) {
            std::size_t end = text.find('\n', start);
            if (end == std::string_view::npos)
                end = text.size();
            std::string_view line = text.substr(start, end - start);
            if (!line.empty() && line.back() == '\r')
                line.remove_suffix(1);
            m_lines.emplace_back(line);
            start = end + 1;
        }
    }

    void skipLine() { nextLine(); }
    bool atEnd() const { return m_next >= m_lines.size() || (m_next + 1 == m_lines.size() && m_lines.back().empty()); }

    // Starts the next line, which must hold at least `values` fields.
    void beginLine(std::size_t values)
    {
        const std::string_view line = nextLine();
        m_fields.clear();
        m_field = 0;
        std::size_t start = 0;
        for (;;) {
            const std::size_t comma = line.find(',', start);
            m_fields.push_back(line.substr(start, comma == std::string_view::npos ? line.npos : comma - start));
            if (comma == std::string_view::npos)
                break;
            start = comma + 1;
        }
        if (m_fields.size() < values)
            throw RuntimeError(ErrorNumber::TypeMismatch, "line " + std::to_string(m_next) + " is short");
    }

    std::int32_t integer() { return parseInteger(field()); }
    bool flag() { return parseFlag(field()); }
    std::string text() { return std::string(trimBlanks(field())); }

private:
    std::string_view nextLine()
    {
        if (m_next >= m_lines.size())
            throw RuntimeError(ErrorNumber::InputPastEndOfFile, "line " + std::to_string(m_next + 1));
        return m_lines[m_next++];
    }

    std::string_view field() { return m_fields.at(m_field++); }

    std::vector<std::string> m_lines;
    std::size_t m_next = 0;
    std::vector<std::string_view> m_fields;
    std::size_t m_field = 0;
};

// Lines 2 to 20 of the current file, which are the whole of the older file.
void readCommonLines(FieldReader& in, Settings& s)
{
    for (auto& region : s.CaptureRegion) {
        in.beginLine(4);
        region.StartX = in.integer();
        region.StartY = in.integer();
        region.SizeX = in.integer();
        region.SizeY = in.integer();
    }
    in.beginLine(1);
    s.AutoStart = in.flag();
    in.beginLine(1);
    s.CaptureInterval = in.integer();
    in.beginLine(1);
    s.CaptureBeep = in.integer();
    in.beginLine(2);
    s.SaveFolder = in.text();
    s.SaveFile = in.text();
    in.beginLine(1);
    s.SaveCsv = in.flag();
    in.beginLine(1);
    s.SaveMonthly = in.flag();
    in.beginLine(1);
    s.Lag = in.integer();
    in.beginLine(1);
    s.StartDelay = in.integer();
    for (auto& entry : s.StartUp) {
        in.beginLine(2);
        entry.Enabled = in.flag();
        entry.Path = in.text();
    }
    in.beginLine(1);
    s.StartUpDelay = in.integer();
    in.beginLine(2);
    s.DoHLCheckExec = in.flag();
    s.DoHLInterval = in.integer();
    in.beginLine(1);
    s.SaveFormat = in.text();
    in.beginLine(2);
    s.Gesture = in.flag();
    s.GestureTime = in.integer();
    in.beginLine(2);
    s.MoneyScan = in.flag();
    s.MoneyWait = in.integer();
    in.beginLine(3);
    s.Graph = in.flag();
    s.GraphTimeScale = in.integer();
    s.GraphAveNum = in.integer();
}

// Our lines after the 60: each may be missing (a file of the older program) and a value
// that does not parse keeps the default rather than condemning the whole file; the notes
// say what was not taken.
void readOwnLines(FieldReader& in, Settings& s, std::vector<std::string>& notes)
{
    const Settings fresh;
    s.ScreenCapture = fresh.ScreenCapture;
    s.Reading = fresh.Reading;
    s.StallAlarm = fresh.StallAlarm;
    s.StallMinutes = fresh.StallMinutes;
    s.NextLevelWindow = fresh.NextLevelWindow;
    s.CompactX = fresh.CompactX;
    s.CompactY = fresh.CompactY;
    s.CompactOpacity = fresh.CompactOpacity;
    s.CompactShown = fresh.CompactShown;
    s.UiLanguage = fresh.UiLanguage;
    const auto line = [&](std::size_t values, const std::string& name, const auto& read) {
        if (in.atEnd())
            return;
        try {
            in.beginLine(values);
            read();
        } catch (const RuntimeError&) {
            notes.push_back("Setting Not Readable : " + name + " ");
        }
    };
    line(1, "ScreenCapture", [&] {
        if (in.integer() == static_cast<std::int32_t>(CaptureMethod::PrintScreen))
            s.ScreenCapture = CaptureMethod::PrintScreen;
    });
    for (std::size_t r = 0; r < kRegionCount; ++r)
        line(5, "Reading(" + std::to_string(r + 1) + ")", [&] {
            const std::int32_t mode = in.integer();
            const std::int32_t endGap = in.integer();
            const std::int32_t tolerance = in.integer();
            const std::int32_t pitch = in.integer();
            const std::string separator = in.text();
            if (mode < 0 || mode > 1 || endGap < 0 || endGap > kMaxScreenSide || tolerance < 0 || tolerance > 1000 ||
                pitch < 0 || (pitch > 0 && pitch < 100) || pitch > 100 * kMaxShapeWidth ||
                !decodePatternColumns(separator))
                throw RuntimeError(ErrorNumber::InvalidProcedureCall);
            s.Reading[r].Mode = static_cast<ReadingMode>(mode);
            s.Reading[r].EndGap = endGap;
            s.Reading[r].Tolerance = tolerance;
            s.Reading[r].Pitch = pitch;
            s.Reading[r].Separator = separator;
        });
    for (std::size_t r = 0; r < kRegionCount; ++r)
        line(1, "Shapes(" + std::to_string(r + 1) + ")", [&] {
            auto shapes = parseShapes(in.text());
            if (!shapes)
                throw RuntimeError(ErrorNumber::TypeMismatch);
            s.Reading[r].Shapes = *std::move(shapes);
        });
    const auto within = [](std::int32_t value, std::int32_t low, std::int32_t high) {
        if (value < low || value > high)
            throw RuntimeError(ErrorNumber::InvalidProcedureCall);
        return value;
    };
    line(2, "StallAlarm", [&] {
        const bool alarm = in.flag();
        s.StallMinutes = within(in.integer(), kStallMinutesRange.first, kStallMinutesRange.second);
        s.StallAlarm = alarm;
    });
    line(1, "NextLevelWindow", [&] {
        const std::int32_t minutes = in.integer();
        if (std::find(kRateWindowChoices.begin(), kRateWindowChoices.end(), minutes) == kRateWindowChoices.end())
            throw RuntimeError(ErrorNumber::InvalidProcedureCall);
        s.NextLevelWindow = minutes;
    });
    line(4, "CompactWindow", [&] {
        const std::int32_t x = within(in.integer(), kUnplaced, kMaxScreenSide);
        const std::int32_t y = within(in.integer(), kUnplaced, kMaxScreenSide);
        const std::int32_t opacity = within(in.integer(), kCompactOpacityRange.first, kCompactOpacityRange.second);
        const bool shown = in.flag();
        s.CompactX = x;
        s.CompactY = y;
        s.CompactOpacity = opacity;
        s.CompactShown = shown;
    });
    line(1, "Language", [&] {
        const std::string code = in.text();
        if (!code.empty() && !languageFromCode(code))
            throw RuntimeError(ErrorNumber::InvalidProcedureCall);
        s.UiLanguage = code;
    });
}

// Reads the current file into s and returns the target name it holds.
std::string readCurrentFile(std::string_view text, Settings& s, std::vector<std::string>& notes)
{
    FieldReader in(text);
    in.skipLine();
    readCommonLines(in, s);
    for (std::size_t r = 0; r < kRegionCount; ++r) {
        in.beginLine(2);
        s.BinaryThreshold[r] = in.integer();
        s.BinaryMask[r] = in.integer();
        in.beginLine(2);
        s.ReferenceSize[r].Width = in.integer();
        s.ReferenceSize[r].Height = in.integer();
        for (auto& pattern : s.PatternStrings[r]) {
            in.beginLine(1);
            pattern = in.text();
        }
    }
    in.beginLine(1);
    std::string target = in.text();
    readOwnLines(in, s, notes);
    return target;
}

bool isValidUtf8(std::string_view text)
{
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        std::size_t length = 0;
        char32_t value = 0;
        char32_t least = 0;
        if (lead < 0x80) {
            ++i;
            continue;
        }
        if (lead >= 0xC2 && lead <= 0xDF) {
            length = 2;
            value = lead & 0x1Fu;
            least = 0x80;
        } else if (lead >= 0xE0 && lead <= 0xEF) {
            length = 3;
            value = lead & 0x0Fu;
            least = 0x800;
        } else if (lead >= 0xF0 && lead <= 0xF4) {
            length = 4;
            value = lead & 0x07u;
            least = 0x10000;
        } else {
            return false;
        }
        if (i + length > text.size())
            return false;
        for (std::size_t k = 1; k < length; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            if ((next & 0xC0u) != 0x80u)
                return false;
            value = (value << 6) | (next & 0x3Fu);
        }
        if (value < least || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF))
            return false;
        i += length;
    }
    return true;
}

// Files are CP932, but a player may have saved one from an editor as UTF-8. A byte-order
// mark settles it. Without one, text that is valid UTF-8 is taken as UTF-8: CP932 kanji
// and kana begin with bytes 0x81-0x9F that UTF-8 only allows inside a sequence, so a
// CP932 file with Japanese in it practically never passes as UTF-8, while UTF-8 Japanese
// often happens to be valid CP932 too, so testing in the other order would misread it.
// ASCII-only text reads the same either way.
std::string decodeFile(const std::string& bytes, TextCodec& codec)
{
    constexpr std::string_view bom = "\xEF\xBB\xBF";
    if (bytes.starts_with(bom))
        return bytes.substr(bom.size());
    if (isValidUtf8(bytes))
        return bytes;
    std::optional<std::string> text = codec.fromCp932(bytes);
    if (!text)
        throw RuntimeError(ErrorNumber::TypeMismatch, "neither CP932 nor UTF-8");
    return *std::move(text);
}

std::string readFileText(const std::filesystem::path& path, TextCodec& codec)
{
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec))
        throw RuntimeError(ErrorNumber::PathFileAccessError, pathUtf8(path) + " is not a file");
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw RuntimeError(ErrorNumber::PathFileAccessError, pathUtf8(path));
    std::ostringstream bytes;
    bytes << in.rdbuf();
    if (in.bad())
        throw RuntimeError(ErrorNumber::PathFileAccessError, pathUtf8(path));
    return decodeFile(bytes.str(), codec);
}

bool isFolder(const std::string& folder)
{
    std::error_code ec;
    return !folder.empty() && std::filesystem::is_directory(utf8Path(folder), ec);
}

} // namespace

std::string padField(std::string_view text)
{
    const std::size_t width = cp932ByteLength(text);
    std::string field = " ";
    if (width < 6)
        field.append(6 - width, ' ');
    field += text;
    field += ' ';
    return field;
}

std::string configFileText(const Settings& s)
{
    std::string out;
    const auto line = [&out](const std::string& text) {
        out += text;
        out += kCrLf;
    };
    line(programTitle(s.SearchWindowName));
    for (std::size_t r = 0; r < kRegionCount; ++r) {
        const CaptureRegionRect& region = s.CaptureRegion[r];
        line(N(region.StartX) + "," + N(region.StartY) + "," + N(region.SizeX) + "," + N(region.SizeY) + "," +
             std::string(kRegionComments[r]));
    }
    line(N(s.AutoStart) + ",          自動開始フラグ");
    line(N(s.CaptureInterval) + ",          キャプチャインターバル(分)");
    line(N(s.CaptureBeep) + ",          キャプチャ時に音を鳴らす");
    line(s.SaveFolder + " , " + s.SaveFile + " , 時給ファイル保存場所");
    line(N(s.SaveCsv) + ",          時給ファイルをCSVで保存する");
    line(N(s.SaveMonthly) + ",          時給記録ファイルを一ヶ月追記する");
    line(N(s.Lag) + ",          キャプチャ調整時間(ｍ秒)");
    line(N(s.StartDelay) + ",          起動時にメイプルストーリ起動確認遅延時間(秒)");
    for (std::size_t i = 0; i < s.StartUp.size(); ++i)
        line(N(s.StartUp[i].Enabled) + ", " + s.StartUp[i].Path + " ,       アプリケーション" + std::to_string(i + 1) +
             "を自動起動させるかと、そのファイルパス");
    line(N(s.StartUpDelay) + ",          アプリケーション2を自動起動させる遅延時間(秒)");
    line(N(s.DoHLCheckExec) + "," + N(s.DoHLInterval) +
         ",          撮影チェックを実行するかどうかと、撮影チェックインターバル(m秒)");
    line(N(s.SaveFormat) + ",          画像ファイルの保存拡張子");
    line(N(s.Gesture) + "," + N(s.GestureTime) +
         ",          マウスボタンジェスチャを監視するかどうかと、ジェスチャ入力待ち時間(m秒)");
    line(N(s.MoneyScan) + "," + N(s.MoneyWait) +
         ",          お金の時給を監視するかどうかと、お金を認識するときの待機時間(m秒)");
    line(N(s.Graph) + "," + N(s.GraphTimeScale) + "," + N(s.GraphAveNum) +
         ",          グラフを表示するかどうかと、グラフ時間軸データ数、グラフの平均化データ数");
    for (std::size_t r = 0; r < kRegionCount; ++r) {
        const std::string number = std::to_string(r + 1);
        line(N(s.BinaryThreshold[r]) + "," + N(s.BinaryMask[r]) + ", 画像２値化境界値とマスク値" + number);
        line(N(s.ReferenceSize[r].Width) + "," + N(s.ReferenceSize[r].Height) + ", 基準画像サイズ");
        for (std::size_t j = 0; j < kPatternCount; ++j)
            line(s.PatternStrings[r][j] + "  , 基準パターン画像変換文字列" + number + (j < 10 ? "0" : "") +
                 std::to_string(j));
    }
    line(s.SearchWindowName + "     , 検索ウィンドウ名");
    line(N(static_cast<std::int32_t>(s.ScreenCapture)) + ",          画面の取り込み方法(0:直接 1:PrintScreenキー)");
    for (std::size_t r = 0; r < kRegionCount; ++r)
        line(N(static_cast<std::int32_t>(s.Reading[r].Mode)) + "," + N(s.Reading[r].EndGap) + "," +
             N(s.Reading[r].Tolerance) + "," + N(s.Reading[r].Pitch) + ", " + s.Reading[r].Separator +
             " , 読み取り方式(0:完全一致 1:字形)、数字の後の空白幅、字形の許容差(千分率)、数字の間隔(百分率)、桁区切りパターン" +
             std::to_string(r + 1));
    for (std::size_t r = 0; r < kRegionCount; ++r)
        line(shapesText(s.Reading[r].Shapes) + " , 字形一覧" + std::to_string(r + 1));
    line(N(s.StallAlarm) + "," + N(s.StallMinutes) + ",          停滞を知らせるかどうかと、停滞とみなす時間(分)");
    line(N(s.NextLevelWindow) + ",          次のレベルまでの時間に使う時給の期間(分 0:全体)");
    line(N(s.CompactX) + "," + N(s.CompactY) + "," + N(s.CompactOpacity) + "," + N(s.CompactShown) +
         ",          小窓の位置、不透明度(％)、表示するかどうか");
    line(s.UiLanguage + "     ,          表示の言語(ja en ko 空欄:システムの言語)");
    return out;
}

ScreenMode askScreenMode(Prompter& prompter, const std::string& searchWindowName)
{
    const std::string title = shown(kScreenTitle);
    const bool fullScreen = prompter.askYesNo(crlf(trFormat("%1をフルスクリーンモードでプレイするときは「はい」を、\n"
                                                            "ウィンドウモードでプレイする場合は「いいえ」を選択してください。",
                                                            {searchWindowName})),
                                              title);
    const std::string confirm = fullScreen ? tr("フルスクリーンモードでよろしいですか？") : tr("ウィンドウモードでよろしいですか？");
    const bool kept = prompter.askOkCancel(
        confirm + std::string(kCrLf) + tr("※注意！ Windowsの環境により逆を選択したほうが良い場合もあります。"), title);
    return fullScreen == kept ? ScreenMode::FullScreen : ScreenMode::Window;
}

ConfigFile::ConfigFile(Settings& settings, std::filesystem::path programFolder, Prompter& prompter, TextCodec& codec,
                       DebugLog* log, std::function<void()> securePixels)
    : m_settings(settings), m_folder(std::move(programFolder)), m_prompter(prompter), m_codec(codec), m_log(log),
      m_securePixels(std::move(securePixels))
{
}

bool ConfigFile::run(int mode)
{
    switch (mode) {
    case Load:
        load();
        m_onDisk = m_settings;
        return true;
    case Defaults:
        restoreDefaults();
        return write();
    case Save:
        return write();
    case SaveWindowPlace: {
        if (!m_onDisk)
            return write();
        Settings kept = *m_onDisk;
        kept.CompactX = m_settings.CompactX;
        kept.CompactY = m_settings.CompactY;
        kept.CompactOpacity = m_settings.CompactOpacity;
        kept.CompactShown = m_settings.CompactShown;
        return write(kept);
    }
    default:
        return true;
    }
}

void ConfigFile::load()
{
    std::error_code ec;
    bool rewrite = false;
    m_clamped.clear();
    if (std::filesystem::exists(path(), ec)) {
        Settings read = m_settings;
        std::string target;
        std::vector<std::string> clamped;
        std::optional<ErrorNumber> error;
        std::string detail;
        try {
            target = readCurrentFile(readFileText(path(), m_codec), read, clamped);
            const std::vector<std::string> ranges = enforceSettingRanges(read);
            clamped.insert(clamped.end(), ranges.begin(), ranges.end());
        } catch (const RuntimeError& e) {
            error = e.number();
            detail = e.what();
        } catch (const std::exception&) {
            error = ErrorNumber::OutOfMemory;
        }
        if (error) {
            replaceDamagedFile(*error, detail);
            return;
        }
        noteClamped(std::move(clamped));
        const std::string current = m_settings.SearchWindowName;
        m_settings = std::move(read);
        m_settings.SearchWindowName = current;
        if (characterCount(target) <= 4) {
            rewrite = true;
        } else if (target != current) {
            if (m_prompter.askYesNo(trFormat("ターゲットは %1 でよろしいいですか？", {target}), shown(kTargetTitle))) {
                m_settings.SearchWindowName = target;
                logLine("Target Change : " + target);
                rewrite = true;
            }
        }
        if (!isFolder(m_settings.SaveFolder)) {
            m_settings.SaveFolder = pathUtf8(m_folder);
            m_prompter.message(crlf(tr("時給記録フォルダが不正のため\nデフォルトフォルダに変更しました。")), shown(kReadTitle));
            rewrite = true;
        }
    } else if (std::filesystem::exists(oldPath(), ec)) {
        if (m_prompter.askYesNo(crlf(tr("以前の設定ファイルが見つかりました。\n　　共通する設定を引き継ぎますか？")),
                                shown(kReadTitle))) {
            Settings read = m_settings;
            std::optional<ErrorNumber> error;
            try {
                FieldReader in(readFileText(oldPath(), m_codec));
                readCommonLines(in, read);
            } catch (const RuntimeError& e) {
                error = e.number();
            } catch (const std::exception&) {
                error = ErrorNumber::OutOfMemory;
            }
            if (error) {
                logError("ConfigFileOld", *error);
                m_prompter.message(damagedText(false), shown(kReadTitle));
                restoreDefaults();
            } else {
                // The older file holds no recognition parameters; its regions go with them.
                m_settings = std::move(read);
                resetRecognitionDefaults(m_settings, askScreenMode(m_prompter, m_settings.SearchWindowName));
                noteClamped(enforceSettingRanges(m_settings));
            }
        } else {
            restoreDefaults();
        }
        rewrite = true;
    } else {
        restoreDefaults();
        rewrite = true;
    }
    if (rewrite)
        write();
    else
        sizeBuffers();
}

void ConfigFile::replaceDamagedFile(ErrorNumber error, const std::string& detail)
{
    // The message promises the back-up only when there is one (a folder in the file's
    // place cannot be copied).
    const bool backedUp = !copyOver(path(), backupPath());
    m_prompter.message(damagedText(backedUp), shown(kReadTitle));
    restoreDefaults();
    write();
    logError("ConfigFile", error);
    if (!detail.empty())
        logLine("ConfigFile : " + detail + " ");
    if (!backedUp)
        logError("ConfigFile", ErrorNumber::PathFileAccessError);
}

void ConfigFile::restoreDefaults()
{
    const ScreenMode mode = askScreenMode(m_prompter, m_settings.SearchWindowName);
    tvx::restoreDefaults(m_settings, pathUtf8(m_folder), mode);
}

bool ConfigFile::write()
{
    return write(m_settings);
}

bool ConfigFile::write(const Settings& settings)
{
    // A temporary file renamed over the old one: an interrupted save leaves either file
    // whole, never a torn one.
    const std::filesystem::path target = path();
    std::filesystem::path temporary = target;
    temporary += ".tmp";
    std::optional<ErrorNumber> error;
    try {
        const std::string bytes = m_codec.toCp932(configFileText(settings));
        {
            std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
            if (!out) {
                std::error_code ec;
                error = std::filesystem::is_directory(m_folder, ec) ? ErrorNumber::PermissionDenied
                                                                    : ErrorNumber::PathNotFound;
            } else {
                out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
                out.close();
                if (!out)
                    error = ErrorNumber::DiskFull;
            }
        }
        if (!error) {
            std::error_code ec;
            std::filesystem::rename(temporary, target, ec);
            if (ec)
                error = ErrorNumber::PathFileAccessError;
        }
    } catch (const std::exception&) {
        error = ErrorNumber::OutOfMemory;
    }
    if (error) {
        std::error_code ec;
        std::filesystem::remove(temporary, ec);
        m_prompter.message(tr("設定をファイルに保存できませんでした。"), shown(kWriteTitle));
        logError("ConfigFile 2", *error);
    }
    // The settings in memory hold either way, so the buffers must follow them.
    if (!error)
        m_onDisk = settings;
    sizeBuffers();
    return !error;
}

void ConfigFile::logLine(std::string_view text)
{
    if (!m_log)
        return;
    try {
        m_log->WriteDebugLog(text);
    } catch (const RuntimeError&) {
        // A log that cannot be written must not stop the configuration.
    }
}

void ConfigFile::noteClamped(std::vector<std::string> lines)
{
    for (const std::string& line : lines)
        logLine(line);
    m_clamped = std::move(lines);
}

void ConfigFile::logError(std::string_view procedure, ErrorNumber number)
{
    logLine(errorTrapLine(procedure, number));
}

void ConfigFile::sizeBuffers()
{
    if (!m_securePixels)
        return;
    try {
        m_securePixels();
    } catch (const RuntimeError& e) {
        logError("SecurePixels", e.number());
    }
}

} // namespace tvx
