#pragma once

#include "ports/MeterView.h"

#include <QMainWindow>

#include "FormOption.h"
#include "base/Language.h"
#include "shell/EnvironmentReport.h"
#include "view/FormMainCommands.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <filesystem>
#include <string>
#include <string_view>

class QAction;
class QFrame;
class QLabel;
class QMessageBox;
class QPlainTextEdit;
class QPushButton;
class QTimer;
class QResizeEvent;

namespace tvx {
class DebugLog;
class Meter;
class MouseButtonSource;
class Prompter;
struct ResultRow;
} // namespace tvx

namespace tvx::ui {

class FormCompact;
class FormDirectX;
class FormHistory;
class FormOption;
class GraphFrame;

// The main window: the account of the running session, the log box, the test buttons,
// the graph, the menus and the two timers. It shows what the engine (Meter) tells it
// and passes the player's commands on.
class FormMain : public QMainWindow, public MeterView {
    Q_OBJECT

public:
    FormMain(std::string_view title, DebugLog& log, std::filesystem::path programFolder, QWidget* parent = nullptr);
    ~FormMain() override;

    // Connects the engine; until then the window only shows itself.
    void attach(Meter& meter);
    // The engine's part of the load: empty account, timers, auto start.
    void FormMain_Load();
    // Sets every text the window shows from the core again, in the current language (the
    // log box keeps what was written); the compact and history windows follow.
    void retranslate();

    QPlainTextEdit* txtLog() const { return m_txtLog; }
    QAction* action(const char* name) const;
    // Where the help documents are: the program's own folder. Set before attach().
    void setDocumentFolder(std::filesystem::path folder) { m_documentFolder = std::move(folder); }
    // What the options window edits and how it takes a pattern capture.
    void setConfigFile(ConfigFile* config, PatternCaptureServices capture)
    {
        m_config = config;
        m_patternCapture = capture;
    }
    // Where gestures come from while Gesture is on; without one they stay off.
    void setGestureSource(MouseButtonSource* source, Prompter* prompter)
    {
        m_gestureSource = source;
        m_gesturePrompter = prompter;
    }
    FormDirectX* formDirectX() const { return m_formDirectX; }
    // The compact window once it was opened; it has no parent, so that it stays when the
    // main window is minimised.
    FormCompact* formCompact() const { return m_formCompact.get(); }
    // Demonstrations: the capture interval in seconds instead of minutes (0: the setting).
    void setIntervalSeconds(std::int32_t seconds);
    // Where the environment report comes from. Set before attach().
    void setEnvironmentSource(std::function<EnvironmentFacts()> source) { m_environment = std::move(source); }

    // MeterView
    void showNotice(const std::string& text, const std::string& title) override;
    void hideNotice() override;
    void resultsChanged() override;
    void controlsChanged() override;
    void graphDataChanged() override;
    void graphFrameChanged() override;
    void captureTaken(const CaptureBitmap& screen) override;
    void captureCaption(int region, const std::string& caption) override;
    void recognizeElapsed(const std::string& text) override;
    void liveChanged() override;
    void sessionReset() override;
    void debugModeChanged() override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void buildMenus();
    QWidget* buildResults();
    QWidget* buildDebugArea();
    void showRow(const ResultRow& row, const std::array<QLabel*, 5>& labels);
    void showLogBox(std::string_view added);
    void runCommand(MenuCommand command);
    void menuOption_Click();
    void menuVersion_Click();
    void menuCompact_Click();
    void menuHistory_Click();
    // The live lines and the compact window show the live figures again.
    void showLive();
    // Saves the settings the compact window changed.
    void rememberCompact();
    // Loads or unloads the gesture listener to follow the Gesture setting.
    void followGestureSetting();
    // Snaps the window to the limits of the graph setting and lays out graph and debug area.
    void Form_Resize();

    DebugLog& m_log;
    std::filesystem::path m_programFolder;
    std::filesystem::path m_documentFolder;
    std::function<EnvironmentFacts()> m_environment;
    ConfigFile* m_config = nullptr;
    PatternCaptureServices m_patternCapture;
    FormOption* m_formOption = nullptr;
    std::unique_ptr<FormCompact> m_formCompact;
    FormHistory* m_formHistory = nullptr;
    Meter* m_meter = nullptr;
    std::unique_ptr<FormMainCommands> m_commands;
    MouseButtonSource* m_gestureSource = nullptr;
    Prompter* m_gesturePrompter = nullptr;
    FormDirectX* m_formDirectX = nullptr;
    QPlainTextEdit* m_txtLog = nullptr;
    int m_logBoxBreaks = 0; // line breaks of the box text the editor shows
    std::array<QLabel*, 5> m_startRow{};
    std::array<QLabel*, 5> m_endRow{};
    std::array<QLabel*, 5> m_elapseRow{};
    std::array<QLabel*, 5> m_headers{};
    std::array<QLabel*, 3> m_rowCaptions{};
    std::array<QLabel*, 3> m_lblCapture{};
    std::array<QLabel*, 3> m_picCapture{};
    QLabel* m_lblElapse = nullptr;
    QLabel* m_lblLiveRates = nullptr;
    QLabel* m_lblLiveOutlook = nullptr;
    QPushButton* m_cmdTempStop = nullptr;
    QPushButton* m_cmdCapture = nullptr;
    QPushButton* m_cmdRecognize = nullptr;
    QFrame* m_frmDebug = nullptr;
    GraphFrame* m_frmGraph = nullptr;
    QMessageBox* m_notice = nullptr;
    QTimer* m_timCaptureInterval = nullptr;
    QTimer* m_timDoHLInterval = nullptr;
    bool m_closing = false;
    Language m_shownLanguage = currentLanguage(); // the language of the window's texts
};

} // namespace tvx::ui
