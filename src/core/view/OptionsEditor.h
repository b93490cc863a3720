#pragma once

#include "config/Settings.h"
#include "recognition/CaptureFile.h"
#include "view/OptionFields.h"
#include "view/RegionPreview.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tvx {

class Clock;
class ConfigFile;
class ScreenSource;

// What the patterns tab shows for the chosen region and template.
struct PatternView {
    int rows = 9;      // rows worth drawing: the cell, the region and any ink
    int cellWidth = 0; // the region's reference width, what a click on the capture selects
    std::array<std::vector<std::uint16_t>, kPatternCount> tiles;
    std::vector<std::uint16_t> editor; // never empty: a blank cell to draw in
    std::string editorCaption;
    std::string note;
    std::string text; // the template as stored
    std::vector<std::uint16_t> captureColumns;
    std::string captureResult;
};

// The options window, toolkit-free. Edits go straight into the live settings, so the
// meter follows them at once; a snapshot of what the file holds tells whether closing
// loses edits. The previews are recomputed from the last capture after every change that
// touches recognition.
// The meter's debug mode as the options window reaches it.
struct DebugSwitch {
    std::function<bool()> isOn;
    std::function<void(bool)> set;
};

class OptionsEditor {
public:
    struct NumberQuestion {
        std::string limitA;
        std::string limitB;
        double proposed = 0;
        std::string step;
        std::string prompt;
        std::string title;
    };

    explicit OptionsEditor(Settings& settings, const CaptureBitmap* capture = nullptr);

    Settings& settings() const { return m_settings; }

    NumberQuestion question(const NumberField& field) const;
    // Stores the number dialog's answer; false (nothing changed) for a cancel.
    bool answer(const NumberField& field, double value);
    std::string numberText(const NumberField& field) const;

    void setDebugSwitch(DebugSwitch debugSwitch) { m_debugSwitch = std::move(debugSwitch); }
    bool flag(const FlagField& field) const;
    void setFlag(const FlagField& field, bool on);
    // false for the debug switch when no meter is there to switch: drawn disabled.
    bool flagAvailable(const FlagField& field) const;
    std::string text(const TextField& field) const { return field.value(m_settings); }
    // Trimmed, and without commas: the file has no quoting, a comma would split the value.
    void setText(const TextField& field, std::string_view typed);
    static bool acceptsTextCharacter(char32_t typed) { return typed != U','; }
    void choose(const ChoiceField& field, std::size_t index);

    void setCapture(const CaptureBitmap& capture);
    const CaptureBitmap* capture() const { return m_capture ? &*m_capture : nullptr; }
    const std::array<RegionPreview, kRegionCount>& previews() const { return m_previews; }
    // "認識結果： ", the preview's reading and how the region is read ("［字形］").
    std::string previewResult(int region) const;
    // After the settings changed behind the editor's back (a load, the defaults).
    void refresh();

    int patternRegion() const { return m_patternRegion; }
    int patternIndex() const { return m_patternIndex; }
    void selectPattern(int region, int index);
    const PatternView& patternView() const { return m_pattern; }
    void storePattern(const std::vector<std::uint16_t>& columns);
    void addColumn();
    void removeColumn();
    void clearPattern();
    // false when the text is not whole groups of four hexadecimal digits; the note says so.
    bool setPatternText(std::string_view hex);
    // Columns first..first+count-1 of the capture's binarised columns become the template.
    bool takeColumns(int first, int count);

    // The pattern capture, logged as the player's command: the status to show while the
    // front end waits 10 s, then the grab, the file beside the program and the status.
    static std::string beginCapture(ConfigFile& config);
    std::string capturePattern(ScreenSource& screen, Clock& clock, ConfigFile& config);

    // Save, load or defaults through the configuration file, logged as the player's
    // command; returns the message to show afterwards (保存 says that it saved).
    std::optional<std::string> runConfigFile(ConfigFile& config, int mode);
    // The compact window's place, opacity and openness are no edits of this window: the
    // compact window saves them itself.
    bool hasUnsavedEdits() const;
    // The question before closing with unsaved edits; Yes saves.
    static std::string unsavedQuestion();
    // What closing the window makes current: the chosen language, when it is another. Returns
    // the message that tells the player, in the new language, what follows it at once.
    std::optional<std::string> apply();

private:
    void refreshPreviews();
    void refreshPattern();
    std::string& pattern();

    Settings& m_settings;
    Settings m_saved;
    DebugSwitch m_debugSwitch;
    std::optional<CaptureBitmap> m_capture;
    std::array<RegionPreview, kRegionCount> m_previews;
    int m_patternRegion = 0;
    int m_patternIndex = 0;
    PatternView m_pattern;
};

// "0".."9", and "区切り" for the delimiter.
std::string patternName(int index);

} // namespace tvx
