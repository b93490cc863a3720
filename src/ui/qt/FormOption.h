#pragma once

#include "config/Settings.h"
#include "recognition/CaptureFile.h"
#include "view/OptionsEditor.h"

#include <QDialog>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;
class QLayout;
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

// The options window: draws the core's OptionsEditor (every field of the settings, edited
// in place) and forwards the player's edits to it. Numbers are asked through the
// prompter's number input; save, load and initialise run the configuration file; closing
// with unsaved edits offers to save them. The recognition tabs show each region of the
// last capture, its binarised columns and what the templates read there, and let the
// player draw templates pixel by pixel or take them from the binarised columns.
class FormOption : public QDialog {
    Q_OBJECT

public:
    FormOption(ConfigFile& configFile, const CaptureBitmap* lastCapture, PatternCaptureServices capture = {},
               QWidget* parent = nullptr);
    ~FormOption() override;

    // The main window hands over its latest capture.
    void setCapture(const CaptureBitmap& bitmap);
    const CaptureBitmap* capture() const { return m_editor.capture(); }

    // The running meter's debug mode; without it the switch is disabled.
    void setDebugSwitch(DebugSwitch debugSwitch);

    // Every control anew from the settings (after a load or reset).
    void refresh();

    // Closing (the close button, the window's close box, Escape): unsaved edits are offered
    // for saving, then a new language becomes current and the window is built anew in it.
    void reject() override;

signals:
    // A load, reset or edit changed settings that others show (the target name, the graph).
    void settingsChanged();

protected:
    void showEvent(QShowEvent* event) override;

private:
    // The title, the tabs and the buttons, in the current language.
    void build();
    void fitToScreen();
    QWidget* buildRegionsTab();
    QWidget* buildPatternsTab();
    QWidget* buildRowsTab(OptionTab tab);
    QWidget* patternEditor();
    QWidget* columnPicker();
    QPushButton* numberButton(const NumberField& field);
    QCheckBox* flagBox(const FlagField& field);
    QLineEdit* textEdit(const TextField& field);
    QComboBox* choiceBox(const ChoiceField& field);
    QPushButton* browseButton(const TextField& field);

    void askNumber(const NumberField& field);
    void refreshPreviews();
    void selectPattern(int region, int index);
    template <typename Edit>
    void editPattern(Edit edit);
    void runConfigFile(int mode);
    void changed();

    void cmdCapture_Click();
    void browse(const TextField& field);

    ConfigFile& m_config;
    PatternCaptureServices m_captureServices;
    OptionsEditor m_editor;

    QWidget* m_body = nullptr;
    QTabWidget* m_tabs = nullptr;
    QLayout* m_buttons = nullptr;
    bool m_fitted = false;
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
};

} // namespace tvx::ui
