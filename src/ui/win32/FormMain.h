#pragma once

#include "CompactWindow.h"
#include "FormOption.h"
#include "GraphFrame.h"
#include "HistoryWindow.h"
#include "base/Language.h"
#include "SmallWindows.h"
#include "Win32Prompter.h"
#include "Win32Ui.h"

#include "ports/MeterView.h"
#include "recognition/Frame.h"
#include "shell/EnvironmentReport.h"
#include "view/FormMainCommands.h"
#include "view/FormMainLayout.h"

#include <windows.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tvx {
class DebugLog;
class GestureListener;
class Meter;
class MouseButtonSource;
class Prompter;
} // namespace tvx

namespace tvx::win32ui {

// The main window on Win32: the account of the running session, the log box, the test
// buttons, the graph, the menus and the two timers. It shows what the engine (Meter) and
// the core's views say and passes the player's commands on.
class FormMain final : public MeterView {
public:
    // Control identifiers: menu commands from kMenuBase, buttons from kButtonBase.
    static constexpr int kMenuBase = 100;
    static constexpr int kCmdTempStop = 200;
    static constexpr int kCmdCapture = 201;
    static constexpr int kCmdRecognize = 202;
    static constexpr int kTxtLog = 210;
    static constexpr int kFrmGraph = 220;
    static constexpr UINT_PTR kTimCaptureInterval = 1;
    static constexpr UINT_PTR kTimDoHLInterval = 2;

    FormMain(std::string_view title, DebugLog& log, std::filesystem::path programFolder);
    ~FormMain() override;
    FormMain(const FormMain&) = delete;
    FormMain& operator=(const FormMain&) = delete;

    // Each before attach().
    void setDocumentFolder(std::filesystem::path folder) { m_documentFolder = std::move(folder); }
    void setEnvironmentSource(std::function<EnvironmentFacts()> source) { m_environment = std::move(source); }
    // What the options window works with (its settingsChanged is the window's own).
    void setOptionsContext(const OptionsContext& context) { m_options = context; }
    // Where gestures come from while Gesture is on; without one they stay off.
    void setGestureSource(MouseButtonSource* source, Prompter* prompter);
    // Where the history window exports to; the save-file dialog without one.
    void setExportChooser(ExportChooser chooser) { m_exportChooser = std::move(chooser); }

    // Connects the engine; until then the window only shows itself.
    void attach(Meter& meter);
    // The engine's part of the load: empty account, timers, auto start.
    void FormMain_Load();
    // Sets every text the window shows from the core again, in the current language (the
    // log box keeps what was written); the compact and history windows follow.
    void retranslate();
    // Demonstrations: the capture interval in seconds instead of minutes (0: the setting).
    void setIntervalSeconds(std::int32_t seconds);

    HWND handle() const { return m_window; }
    HWND txtLog() const { return m_txtLog; }
    HMENU menu() const { return m_menu; }
    GraphFrame& frmGraph() { return *m_frmGraph; }
    NoticeWindow& notice() { return m_notice; }
    CompactWindow& compact() { return *m_compact; }
    HistoryWindow& history() { return m_history; }
    GestureListener* gestureListener() const { return m_gestures.get(); }
    static int commandId(MenuCommand command) { return kMenuBase + static_cast<int>(command); }
    // The text of a named control of the account ("lblStartLv", "lblCapture0", ...).
    std::string controlText(std::string_view name) const;

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

    LRESULT handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

private:
    void createControls();
    void createFonts();
    void buildMenu();
    void layout();
    void showLogBox(std::string_view added);
    void runCommand(MenuCommand command);
    void menuOption_Click();
    void settingsChanged();
    void saveSettings();
    void toggleCompact();
    void showHistory();
    void runTimer(UINT_PTR id, bool on, UINT periodMs);
    void onTimer(UINT_PTR id);
    void onClose();
    void paintPreviews(HDC dc);
    void drawTempStop(const DRAWITEMSTRUCT& item);
    void minimumTrackSize(MINMAXINFO& info);
    void resizeClient(std::int32_t width, std::int32_t height);
    bool graphOn() const;

    HWND m_window = nullptr;
    HMENU m_menu = nullptr;
    DebugLog& m_log;
    std::filesystem::path m_programFolder;
    std::filesystem::path m_documentFolder;
    std::function<EnvironmentFacts()> m_environment;
    OptionsContext m_options;
    Meter* m_meter = nullptr;
    std::unique_ptr<FormMainCommands> m_commands;
    MouseButtonSource* m_gestureSource = nullptr;
    Prompter* m_gesturePrompter = nullptr;
    std::unique_ptr<GestureListener> m_gestures;

    Dpi m_dpi;
    Font m_font;
    Font m_logFont;
    std::array<HWND, 5> m_headers{};
    std::array<HWND, 3> m_rowCaptions{};
    std::array<std::array<HWND, 5>, 3> m_values{};
    std::array<HWND, 3> m_lblCapture{};
    HWND m_cmdTempStop = nullptr;
    HWND m_txtLog = nullptr;
    HWND m_frmDebug = nullptr;
    HWND m_cmdCapture = nullptr;
    HWND m_cmdRecognize = nullptr;
    HWND m_lblElapse = nullptr;
    HWND m_lblLiveRates = nullptr;
    HWND m_lblLiveOutlook = nullptr;
    std::unique_ptr<GraphFrame> m_frmGraph;
    NoticeWindow m_notice;
    std::unique_ptr<CompactWindow> m_compact;
    HistoryWindow m_history;
    ExportChooser m_exportChooser;
    Win32Prompter m_ownPrompter; // for the history window when the options context has none
    FormMainLayout m_layout;
    std::array<std::optional<Frame>, 3> m_previews;
    std::string m_shownLog; // what txtLog holds

    bool m_tempStopRed = false;
    std::array<bool, 3> m_timerOn{};
    UINT m_doHLMs = 0;
    UINT m_captureTimerMs = 10000;
    bool m_closing = false;
    Language m_shownLanguage = currentLanguage(); // the language of the window's texts
    bool m_snapping = false;
};

} // namespace tvx::win32ui
