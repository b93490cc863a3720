#pragma once

#include "config/Settings.h"
#include "recognition/CaptureFile.h"

#include <QDialog>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTabWidget;

namespace tvx {
class Clock;
class ConfigFile;
class ScreenSource;
class Waiter;
} // namespace tvx

namespace tvx::ui {

class GlyphView;

// What the pattern capture needs; without all three its button is disabled.
struct PatternCaptureServices {
    ScreenSource* screen = nullptr;
    Waiter* waiter = nullptr;
    Clock* clock = nullptr;
    // Set while the capture runs, so that no reading disturbs it; may be null.
    bool* cycleSkip = nullptr;
};

// DebugMode belongs to the running meter, not to the settings file.
struct DebugSwitch {
    std::function<bool()> isOn;
    std::function<void(bool)> set;
};

// The options window: every field of the settings, edited in place. Numbers are asked
// through the prompter's number input; save, load and initialise run the configuration
// file. The recognition tabs show each region of the last capture, its binarised columns
// and what the templates read there, and let the player draw templates pixel by pixel or
// take them from the binarised columns, so a new screen can be set up without hex.
class FormOption : public QDialog {
    Q_OBJECT

public:
    FormOption(ConfigFile& configFile, const CaptureBitmap* lastCapture, PatternCaptureServices capture = {},
               QWidget* parent = nullptr);
    ~FormOption() override;

    // The main window hands over its latest capture.
    void setCapture(const CaptureBitmap& bitmap);
    const CaptureBitmap* capture() const { return m_capture ? &*m_capture : nullptr; }

    // Every control anew from the settings (after a load or reset).
    void refresh();
    // Connects the debug mode box; without a switch it stays disabled.
    void setDebugSwitch(DebugSwitch debugSwitch);

signals:
    // A load, reset or edit changed settings that others show (the target name, the graph).
    void settingsChanged();

private:
    struct NumberField {
        QPushButton* button;
        QString prompt;
        int lower;
        int upper;
        std::function<std::int32_t&(Settings&)> value;
        bool recognition; // a region, threshold or template size: previews follow
    };

    QWidget* buildRegionsTab();
    QWidget* buildPatternsTab();
    QWidget* buildTimingTab();
    QWidget* buildFilesTab();
    QPushButton* numberButton(const QString& name, const QString& prompt, int lower, int upper,
                              std::function<std::int32_t&(Settings&)> value, bool recognition = false);
    QComboBox* captureMethodBox();
    QCheckBox* flagBox(const QString& name, const QString& caption, bool Settings::*flag);
    QCheckBox* debugModeBox();
    QLineEdit* textEdit(const QString& name, std::function<std::string&(Settings&)> text);

    void askNumber(const NumberField& field);
    void refreshPreviews();
    void refreshPatterns();
    void selectPattern(int region, int index);
    void storePattern(const std::vector<std::uint16_t>& columns);
    void runConfigFile(int mode, const char* command);
    void changed();

    void cmdCapture_Click();
    void cmdTakeColumns_Click();
    void chooseFolder();
    void chooseStartUp(int entry);

    ConfigFile& m_config;
    Settings& m_settings;
    PatternCaptureServices m_captureServices;
    DebugSwitch m_debugSwitch;
    QCheckBox* m_chkDebugMode = nullptr;
    std::optional<CaptureBitmap> m_capture;
    std::array<std::string, kRegionCount> m_columnStrings;

    QTabWidget* m_tabs = nullptr;
    std::vector<NumberField> m_numbers;
    std::vector<std::function<void()>> m_refreshers;
    std::array<QLabel*, kRegionCount> m_picCapture{};
    std::array<GlyphView*, kRegionCount> m_picBinary{};
    std::array<QLabel*, kRegionCount> m_lblResult{};
    QPushButton* m_cmdCapture = nullptr;
    QLabel* m_lblCaptureStatus = nullptr;

    std::array<QRadioButton*, kRegionCount> m_optPatternRegion{};
    std::array<GlyphView*, kPatternCount> m_picPattern{};
    GlyphView* m_picEditor = nullptr;
    GlyphView* m_picColumns = nullptr;
    QLabel* m_lblEditor = nullptr;
    QLabel* m_lblWidthNote = nullptr;
    QLabel* m_lblPatternResult = nullptr;
    QLineEdit* m_txtPattern = nullptr;
    int m_patternRegion = 0;
    int m_patternIndex = 0;
};

} // namespace tvx::ui
