#include "view/OptionsEditor.h"

#include "base/Errors.h"
#include "base/Utf8Path.h"
#include "config/ConfigFile.h"
#include "config/PatternColumns.h"
#include "ports/Clock.h"
#include "ports/ScreenSource.h"
#include "recognition/ScreenRecognizer.h"
#include "view/NumberInput.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tvx {
namespace {

std::vector<std::uint16_t> columnsOf(const std::string& groups)
{
    return decodePatternColumns(groups).value_or(std::vector<std::uint16_t>{});
}

// Rows worth showing for a region's glyphs: the cell, the region and any ink, at most 16.
int glyphRows(const Settings& s, int region)
{
    const auto r = static_cast<std::size_t>(region);
    int rows = std::max(s.ReferenceSize[r].Height, s.CaptureRegion[r].SizeY);
    for (const std::string& pattern : s.PatternStrings[r])
        for (const std::uint16_t column : columnsOf(pattern))
            for (int y = 15; y >= rows; --y)
                if (column & (1u << y)) {
                    rows = y + 1;
                    break;
                }
    return std::clamp(rows, 1, 16);
}

void logLine(ConfigFile& config, const std::string& line)
{
    if (DebugLog* log = config.log()) {
        try {
            log->WriteDebugLog(line);
        } catch (const RuntimeError&) {
            // The options work on without a writable log.
        }
    }
}

std::string trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return {};
    return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

} // namespace

std::string patternName(int index)
{
    return index == kDelimiterIndex ? tr("区切り") : std::to_string(index);
}

OptionsEditor::OptionsEditor(Settings& settings, const CaptureBitmap* capture)
    : m_settings(settings), m_saved(settings)
{
    if (capture)
        m_capture = *capture;
    refreshPreviews();
}

OptionsEditor::NumberQuestion OptionsEditor::question(const NumberField& field) const
{
    return {std::to_string(field.lower),
            std::to_string(field.upper),
            static_cast<double>(field.value(m_settings, field.region)),
            "1",
            std::string(field.prompt),
            std::string(kNumberTitle)};
}

bool OptionsEditor::answer(const NumberField& field, double value)
{
    if (value == NumberInput::kCancelled || !std::isfinite(value))
        return false;
    field.value(m_settings, field.region) =
        static_cast<std::int32_t>(std::clamp<double>(std::round(value), field.lower, field.upper));
    if (field.recognition)
        refreshPreviews();
    return true;
}

std::string OptionsEditor::numberText(const NumberField& field) const
{
    return std::to_string(field.value(m_settings, field.region));
}

void OptionsEditor::setText(const TextField& field, std::string_view typed)
{
    std::string text = trimmed(typed);
    std::erase(text, ',');
    field.value(m_settings) = std::move(text);
}

void OptionsEditor::choose(const ChoiceField& field, std::size_t index)
{
    const std::vector<ChoiceField::Choice> choices = choicesFor(field, m_settings);
    if (index < choices.size())
        field.set(m_settings, choices[index].value);
}

void OptionsEditor::setCapture(const CaptureBitmap& capture)
{
    m_capture = capture;
    refreshPreviews();
}

void OptionsEditor::refresh()
{
    refreshPreviews();
}

void OptionsEditor::refreshPreviews()
{
    for (int r = 0; r < kRegionCount; ++r)
        m_previews[static_cast<std::size_t>(r)] = previewRegion(capture(), m_settings, r);
    refreshPattern();
}

std::string OptionsEditor::previewResult(int region) const
{
    const auto r = static_cast<std::size_t>(region);
    return trFormat("認識結果： %1　［%2］", {m_previews.at(r).reading, readingModeName(m_settings.Reading.at(r).Mode)});
}

void OptionsEditor::refreshPattern()
{
    const auto r = static_cast<std::size_t>(m_patternRegion);
    const auto j = static_cast<std::size_t>(m_patternIndex);
    PatternView& view = m_pattern;
    view.rows = glyphRows(m_settings, m_patternRegion);
    view.cellWidth = m_settings.ReferenceSize[r].Width;
    for (std::size_t k = 0; k < kPatternCount; ++k)
        view.tiles[k] = columnsOf(m_settings.PatternStrings[r][k]);
    const std::string& text = m_settings.PatternStrings[r][j];
    const std::optional<std::vector<std::uint16_t>> columns = decodePatternColumns(text);
    view.editor = columns.value_or(std::vector<std::uint16_t>{});
    if (view.editor.empty())
        view.editor.assign(static_cast<std::size_t>(std::max(1, view.cellWidth)), 0);
    view.editorCaption = trFormat("%1 のパターン「%2」", {regionCaption(m_patternRegion), patternName(m_patternIndex)});
    view.text = text;
    const int have = columns ? static_cast<int>(columns->size()) : 0;
    if (!columns)
        view.note = tr("変換文字列が不正です。描き直してください。");
    else if (have != view.cellWidth)
        view.note = trFormat("幅 %1 列：基準幅 %2 列と違うため、このままでは認識に使われません。",
                             {std::to_string(have), std::to_string(view.cellWidth)});
    else
        view.note = trFormat("幅 %1 列（基準幅どおり）", {std::to_string(have)});
    view.captureColumns = m_previews[r].columns;
    view.captureResult = trFormat("この領域の認識結果： %1　［%2］",
                                  {m_previews[r].reading, readingModeName(m_settings.Reading[r].Mode)});
}

std::string& OptionsEditor::pattern()
{
    return m_settings.PatternStrings[static_cast<std::size_t>(m_patternRegion)]
                                    [static_cast<std::size_t>(m_patternIndex)];
}

void OptionsEditor::selectPattern(int region, int index)
{
    m_patternRegion = std::clamp(region, 0, kRegionCount - 1);
    m_patternIndex = std::clamp(index, 0, kPatternCount - 1);
    refreshPattern();
}

void OptionsEditor::storePattern(const std::vector<std::uint16_t>& columns)
{
    pattern() = encodePatternColumns(columns);
    refreshPreviews();
}

void OptionsEditor::addColumn()
{
    std::vector<std::uint16_t> columns = m_pattern.editor;
    columns.push_back(0);
    storePattern(columns);
}

void OptionsEditor::removeColumn()
{
    std::vector<std::uint16_t> columns = m_pattern.editor;
    if (!columns.empty())
        columns.pop_back();
    storePattern(columns);
}

void OptionsEditor::clearPattern()
{
    storePattern(std::vector<std::uint16_t>(m_pattern.editor.size(), 0));
}

bool OptionsEditor::setPatternText(std::string_view hex)
{
    const std::optional<std::vector<std::uint16_t>> columns = decodePatternColumns(hex);
    if (!columns) {
        m_pattern.note = tr("変換文字列は16進数4桁ずつ（1列に4桁）です。");
        return false;
    }
    storePattern(*columns);
    return true;
}

bool OptionsEditor::takeColumns(int first, int count)
{
    const std::vector<std::uint16_t>& all = m_pattern.captureColumns;
    if (first < 0 || count <= 0 || first + count > static_cast<int>(all.size()))
        return false;
    storePattern(std::vector<std::uint16_t>(all.begin() + first, all.begin() + first + count));
    return true;
}

bool OptionsEditor::flag(const FlagField& field) const
{
    if (field.value)
        return field.value(m_settings);
    return m_debugSwitch.isOn && m_debugSwitch.isOn();
}

void OptionsEditor::setFlag(const FlagField& field, bool on)
{
    if (field.value)
        field.value(m_settings) = on;
    else if (flagAvailable(field))
        m_debugSwitch.set(on);
}

bool OptionsEditor::flagAvailable(const FlagField& field) const
{
    return field.value || (m_debugSwitch.isOn && m_debugSwitch.set);
}

std::string OptionsEditor::beginCapture(ConfigFile& config)
{
    logLine(config, "Click : Pattern Capture ");
    return tr("10秒後にキャプチャします。ゲームを前面に出してください…");
}

std::string OptionsEditor::capturePattern(ScreenSource& screen, Clock& clock, ConfigFile& config)
{
    try {
        std::optional<CaptureBitmap> image = screen.grab({});
        if (!image)
            throw RuntimeError(ErrorNumber::InvalidProcedureCall, "no screen image");
        setCapture(*image);
        const LocalDateTime now = clock.now();
        char stamp[16];
        std::snprintf(stamp, sizeof stamp, "%02d%02d%02d%02d%02d", now.month % 100, now.day % 100, now.hour % 100,
                      now.minute % 100, now.second % 100);
        const std::filesystem::path file = config.programFolder() / (std::string("Capture_") + stamp + ".bmp");
        const Frame picture = toFrame(*m_capture);
        if (picture.width() == 0 || !writeBitmap24(file, picture))
            throw RuntimeError(ErrorNumber::PathFileAccessError, pathUtf8(file));
        config.sizeBuffers();
        logLine(config, "Pattern Capture and Save ･･･ End ");
        return trFormat("保存しました： %1", {pathUtf8(file)});
    } catch (const std::exception& e) {
        // Whatever the capture throws (a bad_alloc for a huge screen, too) ends here.
        logLine(config, errorTrapLine("cmdCapture_Click", errorNumberOf(e)));
        return tr("キャプチャできませんでした。");
    }
}

std::optional<std::string> OptionsEditor::runConfigFile(ConfigFile& config, int mode)
{
    const char* command = mode == ConfigFile::Save   ? "Option Save "
                          : mode == ConfigFile::Load ? "Option Load "
                                                     : "Option Initialize ";
    logLine(config, std::string("Click : ") + command);
    const bool written = config.run(mode);
    refreshPreviews();
    if (mode == ConfigFile::Load || written)
        m_saved = m_settings;
    if (mode == ConfigFile::Save && written)
        return tr("設定を保存しました。");
    return std::nullopt;
}

bool OptionsEditor::hasUnsavedEdits() const
{
    Settings saved = m_saved;
    saved.CompactX = m_settings.CompactX;
    saved.CompactY = m_settings.CompactY;
    saved.CompactOpacity = m_settings.CompactOpacity;
    saved.CompactShown = m_settings.CompactShown;
    return m_settings != saved;
}

std::string OptionsEditor::unsavedQuestion()
{
    // Two texts for the catalogue, which keeps no line breaks of Windows.
    return std::string(tr("変更した設定はまだ保存されていません。")) + "\r\n" +
           tr("保存しますか？（「いいえ」では、次に起動するまでの間だけ有効です）");
}

std::optional<std::string> OptionsEditor::apply()
{
    const std::optional<Language> chosen = languageFromCode(m_settings.UiLanguage);
    if (!chosen || *chosen == currentLanguage())
        return std::nullopt;
    setLanguage(*chosen);
    return tr("表示の言語を変更しました。開いている画面は次に開いたときから、メイン画面はすぐに切り替わります。");
}

} // namespace tvx
