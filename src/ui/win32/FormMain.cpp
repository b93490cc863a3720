#include "FormMain.h"

#include "base/Errors.h"
#include "config/ConfigFile.h"
#include "config/Settings.h"
#include "graph/GraphLayout.h"
#include "graph/StepTrap.h"
#include "measurement/SessionHistory.h"
#include "meter/GestureListener.h"
#include "meter/Meter.h"
#include "recognition/CaptureFile.h"
#include "shell/DebugLog.h"
#include "view/LiveWindowModel.h"

#include <windowsx.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace tvx::win32ui {
namespace {

constexpr wchar_t kClass[] = L"TallivexFormMain";
constexpr PixelRect kInitialClient{0, 0, 900, 560};
// The graph frame stands right of the left panel and takes what the layout gives it.
constexpr std::int32_t kGraphLeft = kPanelClientWidth;
constexpr std::int32_t kGraphTop = 4;
constexpr int kResourceIcon = 1;

void writeLog(DebugLog& log, std::string_view line)
{
    try {
        log.WriteDebugLog(line);
    } catch (const RuntimeError&) {
        // The log is the last resort.
    }
}

// The part of a screen image under a capture region, as far as the image reaches.
Frame crop(const Frame& screen, const CaptureRegionRect& region)
{
    const std::int32_t left = std::clamp(region.StartX, 0, screen.width());
    const std::int32_t top = std::clamp(region.StartY, 0, screen.height());
    const std::int32_t width = std::clamp(region.SizeX, 0, screen.width() - left);
    const std::int32_t height = std::clamp(region.SizeY, 0, screen.height() - top);
    Frame part(width, height);
    for (std::int32_t y = 0; y < height; ++y)
        std::memcpy(part.row(y), screen.row(top + y) + 3 * static_cast<std::size_t>(left), part.rowBytes());
    return part;
}

void paintFrame(HDC dc, const Frame& frame, const RECT& at)
{
    if (frame.width() <= 0 || frame.height() <= 0)
        return;
    const std::size_t stride = (frame.rowBytes() + 3) & ~std::size_t{3};
    std::vector<std::uint8_t> rows(stride * static_cast<std::size_t>(frame.height()));
    for (std::int32_t y = 0; y < frame.height(); ++y)
        std::memcpy(rows.data() + stride * static_cast<std::size_t>(y), frame.row(y), frame.rowBytes());
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = frame.width();
    info.bmiHeader.biHeight = -frame.height();
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    info.bmiHeader.biCompression = BI_RGB;
    // The preview shows the region at its own size, cut where the box ends.
    const int width = std::min<int>(frame.width(), at.right - at.left);
    const int height = std::min<int>(frame.height(), at.bottom - at.top);
    StretchDIBits(dc, at.left, at.top, width, height, 0, frame.height() - height, width, height, rows.data(), &info,
                  DIB_RGB_COLORS, SRCCOPY);
}

RECT deviceRect(const PixelRect& rect, Dpi dpi)
{
    return RECT{dpi(rect.left), dpi(rect.top), dpi(rect.left + rect.width), dpi(rect.top + rect.height)};
}

} // namespace

FormMain::FormMain(std::string_view title, DebugLog& log, std::filesystem::path programFolder)
    : m_log(log), m_programFolder(std::move(programFolder))
{
    HICON icon = LoadIconW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(kResourceIcon));
    registerWindowClass(kClass, &ownedWindowProc<FormMain>, GetSysColorBrush(COLOR_BTNFACE), icon);
    buildMenu();
    m_window = CreateWindowExW(0, kClass, wide(title).c_str(), WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT,
                               CW_USEDEFAULT, kInitialClient.width, kInitialClient.height, nullptr, m_menu,
                               GetModuleHandleW(nullptr), this);
    if (m_window == nullptr)
        return;
    m_dpi = Dpi::of(m_window);
    createFonts();
    createControls();
    resizeClient(kInitialClient.width, kInitialClient.height);
}

FormMain::~FormMain()
{
    m_compact.reset();
    m_gestures.reset();
    m_frmGraph.reset();
    if (m_window != nullptr)
        DestroyWindow(m_window);
}

void FormMain::buildMenu()
{
    m_menu = CreateMenu();
    for (const MenuBarEntry& entry : mainMenu()) {
        if (entry.items.empty()) {
            AppendMenuW(m_menu, MF_STRING, static_cast<UINT_PTR>(commandId(entry.command.command)),
                        wide(entry.command.text()).c_str());
            continue;
        }
        HMENU popup = CreatePopupMenu();
        for (const MenuItem& item : entry.items)
            AppendMenuW(popup, MF_STRING, static_cast<UINT_PTR>(commandId(item.command)), wide(item.text()).c_str());
        AppendMenuW(m_menu, MF_POPUP, reinterpret_cast<UINT_PTR>(popup), wide(entry.text()).c_str());
    }
    for (MenuCommand command : {MenuCommand::Run, MenuCommand::Stop})
        EnableMenuItem(m_menu, static_cast<UINT>(commandId(command)), MF_BYCOMMAND | MF_GRAYED);
}

void FormMain::retranslate()
{
    m_shownLanguage = currentLanguage();
    UINT position = 0;
    for (const MenuBarEntry& entry : mainMenu()) {
        if (entry.items.empty()) {
            const UINT id = static_cast<UINT>(commandId(entry.command.command));
            const std::string_view caption =
                entry.command.command == MenuCommand::Run && m_meter != nullptr ? m_meter->state().controls.runCaption
                                                                                : entry.command.caption;
            ModifyMenuW(m_menu, id, MF_BYCOMMAND | MF_STRING, id, wide(tr(caption)).c_str());
        } else {
            HMENU popup = GetSubMenu(m_menu, static_cast<int>(position));
            for (const MenuItem& item : entry.items) {
                const UINT id = static_cast<UINT>(commandId(item.command));
                ModifyMenuW(popup, id, MF_BYCOMMAND | MF_STRING, id, wide(item.text()).c_str());
            }
            ModifyMenuW(m_menu, position, MF_BYPOSITION | MF_POPUP, reinterpret_cast<UINT_PTR>(popup),
                        wide(entry.text()).c_str());
        }
        ++position;
    }
    // ModifyMenu enables what it changes: the engine's states again.
    if (m_meter != nullptr) {
        controlsChanged();
    } else {
        for (MenuCommand command : {MenuCommand::Run, MenuCommand::Stop})
            EnableMenuItem(m_menu, static_cast<UINT>(commandId(command)), MF_BYCOMMAND | MF_GRAYED);
    }
    DrawMenuBar(m_window);
    for (std::size_t field = 0; field < m_headers.size(); ++field)
        setText(m_headers[field], tr(kResultHeaders[field]));
    for (std::size_t row = 0; row < m_rowCaptions.size(); ++row)
        setText(m_rowCaptions[row], tr(kResultRows[row].caption));
    setText(m_cmdTempStop, tr(kTempStopCaption));
    InvalidateRect(m_cmdTempStop, nullptr, TRUE);
    setText(m_cmdCapture, tr(kTestCaptureCaption));
    setText(m_cmdRecognize, tr(kTestRecognizeCaption));
    m_frmGraph->retranslate();
    m_history.retranslate();
    if (m_compact)
        m_compact->retranslate();
    if (m_meter != nullptr)
        liveChanged();
}

void FormMain::createFonts()
{
    m_font = createFont(12, m_dpi);
    m_logFont = createFont(12, m_dpi, true);
}

void FormMain::createControls()
{
    HFONT font = m_font.get();
    for (std::size_t field = 0; field < kResultHeaders.size(); ++field)
        m_headers[field] = createControl(m_window, L"STATIC", tr(kResultHeaders[field]), SS_RIGHT, 0, font);
    for (std::size_t row = 0; row < kResultRows.size(); ++row) {
        m_rowCaptions[row] = createControl(m_window, L"STATIC", tr(kResultRows[row].caption), SS_LEFT, 0, font);
        for (std::size_t field = 0; field < kResultFields.size(); ++field)
            m_values[row][field] = createControl(m_window, L"STATIC", "", SS_RIGHT | SS_NOPREFIX, 0, font);
    }
    m_cmdTempStop = createControl(m_window, L"BUTTON", tr(kTempStopCaption), BS_OWNERDRAW | WS_TABSTOP, kCmdTempStop, font);
    for (HWND& caption : m_lblCapture)
        caption = createControl(m_window, L"STATIC", "", SS_LEFT | SS_NOPREFIX, 0, font);
    m_txtLog = createControl(m_window, L"EDIT", "",
                             ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL | ES_AUTOHSCROLL | WS_VSCROLL | WS_HSCROLL,
                             kTxtLog, m_logFont.get());
    SetWindowLongPtrW(m_txtLog, GWL_EXSTYLE, GetWindowLongPtrW(m_txtLog, GWL_EXSTYLE) | WS_EX_CLIENTEDGE);
    SetWindowPos(m_txtLog, nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_FRAMECHANGED);
    SendMessageW(m_txtLog, EM_SETLIMITTEXT, 0, 0);
    m_cmdCapture = createControl(m_window, L"BUTTON", tr(kTestCaptureCaption), BS_PUSHBUTTON | WS_TABSTOP, kCmdCapture, font);
    m_cmdRecognize =
        createControl(m_window, L"BUTTON", tr(kTestRecognizeCaption), BS_PUSHBUTTON | WS_TABSTOP, kCmdRecognize, font);
    m_lblElapse = createControl(m_window, L"STATIC", "", SS_LEFT | SS_NOPREFIX, 0, font);
    m_lblLiveRates = createControl(m_window, L"STATIC", "", SS_LEFT | SS_NOPREFIX, 0, font);
    m_lblLiveOutlook = createControl(m_window, L"STATIC", "", SS_LEFT | SS_NOPREFIX, 0, font);
    m_frmGraph = std::make_unique<GraphFrame>(m_window, kFrmGraph);
    m_frmGraph->view().setDebugLog(&m_log);
}

void FormMain::setGestureSource(MouseButtonSource* source, Prompter* prompter)
{
    m_gestureSource = source;
    m_gesturePrompter = prompter;
}

void FormMain::attach(Meter& meter)
{
    m_meter = &meter;
    m_commands = std::make_unique<FormMainCommands>(meter, m_log, m_programFolder);
    m_commands->setDocumentFolder(m_documentFolder);
    m_commands->setEnvironmentSource(m_environment);
    GraphFrameView& graph = m_frmGraph->view();
    graph.setSettings(meter.settings());
    graph.setGraphView(meter.state().graphView);
    graph.setMeterControls(&meter.state().controls);
    meter.logBox().setListener([this](std::string_view added) { showLogBox(added); });
    if (m_gestureSource != nullptr && m_gesturePrompter != nullptr)
        m_gestures = std::make_unique<GestureListener>(meter, *m_gestureSource, m_log, *m_gesturePrompter);
    m_compact = std::make_unique<CompactWindow>(meter.settings(), [this] { saveSettings(); });
    layout();
    liveChanged();
}

void FormMain::FormMain_Load()
{
    try {
        // Gestures first: an auto start waits StartDelay, and they must work meanwhile.
        if (m_gestures)
            m_gestures->followSetting();
        m_meter->load(m_meter->clock());
        m_frmGraph->view().setGraphBuffer(m_meter->state().graph.get());
        layout();
        graphDataChanged();
        // Open when the meter last closed: it opens again where it was.
        if (m_meter->settings().CompactShown)
            m_compact->open(meterLiveView(*m_meter), false);
        m_log.WriteDebugLog("Program StartUp Complete ");
    } catch (const RuntimeError& error) {
        m_log.writeErrorTrap("FormMain_Load", error.number());
    }
}

void FormMain::setIntervalSeconds(std::int32_t seconds)
{
    if (m_meter == nullptr)
        return;
    m_meter->state().intervalSecondsOverride = seconds;
    m_frmGraph->view().setIntervalSeconds(seconds); // the time axis counts seconds then
    m_captureTimerMs = static_cast<UINT>(FormMainCommands::captureTimerMs(seconds));
    if (m_timerOn[kTimCaptureInterval])
        SetTimer(m_window, kTimCaptureInterval, m_captureTimerMs, nullptr);
}

bool FormMain::graphOn() const
{
    return m_meter != nullptr && m_meter->settings().Graph;
}

void FormMain::layout()
{
    if (m_window == nullptr || IsIconic(m_window))
        return;
    RECT client{};
    GetClientRect(m_window, &client);
    const FormResizeLayout form =
        formResizeLayout(m_dpi.logical(client.right), m_dpi.logical(client.bottom), graphOn());
    if (m_meter != nullptr && (form.outerWidthTwips || form.outerHeightTwips) && !m_snapping) {
        // Snapped back: the new size lays the window out again (once, should the system
        // refuse the size).
        m_snapping = true;
        resizeClient(form.clientWidth, form.clientHeight);
        m_snapping = false;
        return;
    }
    ShowWindow(m_frmGraph->handle(), form.frmGraphVisible ? SW_SHOWNA : SW_HIDE);
    if (form.frmGraphVisible)
        m_frmGraph->place({kGraphLeft, kGraphTop, form.frmGraphWidth, form.frmGraphHeight}, m_dpi);

    StepTrap trap;
    const bool debugMode = m_meter != nullptr && m_meter->state().DebugMode;
    m_layout = formMainLayout(form.clientHeight, debugMode, m_layout.txtLog.height, trap);
    for (std::size_t field = 0; field < kResultHeaders.size(); ++field)
        moveControl(m_headers[field], m_layout.headers[field], m_dpi);
    for (std::size_t row = 0; row < kResultRows.size(); ++row) {
        moveControl(m_rowCaptions[row], m_layout.rowCaptions[row], m_dpi);
        for (std::size_t field = 0; field < kResultFields.size(); ++field)
            moveControl(m_values[row][field], m_layout.values[row][field], m_dpi);
    }
    moveControl(m_cmdTempStop, m_layout.cmdTempStop, m_dpi);
    for (std::size_t region = 0; region < 3; ++region)
        moveControl(m_lblCapture[region], m_layout.lblCapture[region], m_dpi);
    moveControl(m_txtLog, m_layout.txtLog, m_dpi);
    moveControl(m_lblLiveRates, m_layout.lblLiveRates, m_dpi);
    moveControl(m_lblLiveOutlook, m_layout.lblLiveOutlook, m_dpi);
    for (HWND control : {m_cmdCapture, m_cmdRecognize, m_lblElapse})
        ShowWindow(control, m_layout.frmDebugVisible ? SW_SHOWNA : SW_HIDE);
    moveControl(m_cmdCapture, m_layout.cmdCapture, m_dpi);
    moveControl(m_cmdRecognize, m_layout.cmdRecognize, m_dpi);
    moveControl(m_lblElapse, m_layout.lblElapse, m_dpi);
    trap.report(&m_log, "DebugItemDisplay");
    InvalidateRect(m_window, nullptr, TRUE);
    if (m_meter != nullptr)
        writeLog(m_log, "Resaizing Form ･･･ End ");
}

void FormMain::resizeClient(std::int32_t width, std::int32_t height)
{
    RECT outer{0, 0, m_dpi(width), m_dpi(height)};
    AdjustWindowRectExForDpi(&outer, static_cast<DWORD>(GetWindowLongPtrW(m_window, GWL_STYLE)), TRUE, 0, m_dpi.dpi);
    SetWindowPos(m_window, nullptr, 0, 0, outer.right - outer.left, outer.bottom - outer.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void FormMain::minimumTrackSize(MINMAXINFO& info)
{
    // Until the settings are known the window may have any size.
    const bool graph = m_meter == nullptr || graphOn();
    RECT outer{0, 0, m_dpi(graph ? kMinGraphClientWidth : kPanelClientWidth), m_dpi(kMinClientHeight)};
    AdjustWindowRectExForDpi(&outer, static_cast<DWORD>(GetWindowLongPtrW(m_window, GWL_STYLE)), TRUE, 0, m_dpi.dpi);
    info.ptMinTrackSize = POINT{outer.right - outer.left, outer.bottom - outer.top};
    // Without the graph the window has the left panel's width only.
    if (!graph)
        info.ptMaxTrackSize.x = info.ptMinTrackSize.x;
}

void FormMain::showLogBox(std::string_view added)
{
    // The control is told only what changed: setting the whole text of a full box on
    // every line costs seconds under some systems.
    const std::string& text = m_meter->logBox().text();
    const std::size_t grown = m_shownLog.size() + added.size();
    const bool appended = text.size() <= grown && grown - text.size() <= m_shownLog.size() &&
                          text.ends_with(added) &&
                          std::string_view(m_shownLog).substr(grown - text.size()) ==
                              std::string_view(text).substr(0, text.size() - added.size());
    SendMessageW(m_txtLog, WM_SETREDRAW, FALSE, 0);
    if (appended) {
        const std::size_t cut = grown - text.size();
        const auto end = static_cast<WPARAM>(GetWindowTextLengthW(m_txtLog));
        SendMessageW(m_txtLog, EM_SETSEL, end, static_cast<LPARAM>(end));
        SendMessageW(m_txtLog, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(wide(added).c_str()));
        if (cut > 0) {
            const auto front = static_cast<LPARAM>(wide(std::string_view(m_shownLog).substr(0, cut)).size());
            SendMessageW(m_txtLog, EM_SETSEL, 0, front);
            SendMessageW(m_txtLog, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(L""));
        }
    } else {
        SetWindowTextW(m_txtLog, wide(text).c_str());
    }
    m_shownLog = text;
    const auto caret = static_cast<WPARAM>(wide(std::string_view(text).substr(0, m_meter->logBox().caret())).size());
    SendMessageW(m_txtLog, EM_SETSEL, caret, static_cast<LPARAM>(caret));
    SendMessageW(m_txtLog, WM_SETREDRAW, TRUE, 0);
    SendMessageW(m_txtLog, EM_SCROLLCARET, 0, 0);
    InvalidateRect(m_txtLog, nullptr, TRUE);
}

std::string FormMain::controlText(std::string_view name) const
{
    for (std::size_t row = 0; row < kResultRows.size(); ++row)
        for (std::size_t field = 0; field < kResultFields.size(); ++field)
            if (name.substr(0, kResultRows[row].prefix.size()) == kResultRows[row].prefix &&
                name.substr(kResultRows[row].prefix.size()) == kResultFields[field])
                return windowText(m_values[row][field]);
    for (std::size_t region = 0; region < 3; ++region)
        if (name == "lblCapture" + std::to_string(region))
            return windowText(m_lblCapture[region]);
    if (name == "lblElapse")
        return windowText(m_lblElapse);
    if (name == "lblLiveRates")
        return windowText(m_lblLiveRates);
    if (name == "lblLiveOutlook")
        return windowText(m_lblLiveOutlook);
    if (name == "cmdTempStop")
        return windowText(m_cmdTempStop);
    return {};
}

void FormMain::resultsChanged()
{
    const ResultLabels& labels = m_meter->state().labels;
    const ResultRow* rows[] = {&labels.Start, &labels.End, &labels.Elapse};
    for (std::size_t row = 0; row < 3; ++row) {
        const std::string* texts[] = {&rows[row]->Time, &rows[row]->Lv, &rows[row]->Exp, &rows[row]->ExpPS,
                                      &rows[row]->Money};
        for (std::size_t field = 0; field < 5; ++field)
            setText(m_values[row][field], *texts[field]);
    }
    liveChanged();
}

void FormMain::runTimer(UINT_PTR id, bool on, UINT periodMs)
{
    if (on)
        SetTimer(m_window, id, periodMs, nullptr);
    else if (m_timerOn[id])
        KillTimer(m_window, id);
    m_timerOn[id] = on;
}

void FormMain::controlsChanged()
{
    const MeterControls& controls = m_meter->state().controls;
    const auto enable = [this](MenuCommand command, bool on) {
        EnableMenuItem(m_menu, static_cast<UINT>(commandId(command)), MF_BYCOMMAND | (on ? MF_ENABLED : MF_GRAYED));
    };
    const UINT run = static_cast<UINT>(commandId(MenuCommand::Run));
    ModifyMenuW(m_menu, run, MF_BYCOMMAND | MF_STRING, run, wide(tr(controls.runCaption)).c_str());
    enable(MenuCommand::Run, controls.runEnabled);
    enable(MenuCommand::Stop, controls.stopEnabled);
    DrawMenuBar(m_window);
    EnableWindow(m_cmdCapture, controls.testButtonsEnabled);
    EnableWindow(m_cmdRecognize, controls.testButtonsEnabled);
    if (m_tempStopRed != controls.tempStopRed) {
        m_tempStopRed = controls.tempStopRed;
        InvalidateRect(m_cmdTempStop, nullptr, TRUE);
    }
    if (controls.captureTimerEnabled != m_timerOn[kTimCaptureInterval])
        runTimer(kTimCaptureInterval, controls.captureTimerEnabled, m_captureTimerMs);
    // SetTimer on a running timer only changes its period.
    const auto doHLMs = static_cast<UINT>(std::max(1, controls.doHLIntervalMs));
    if (controls.doHLTimerEnabled != m_timerOn[kTimDoHLInterval] || (controls.doHLTimerEnabled && doHLMs != m_doHLMs))
        runTimer(kTimDoHLInterval, controls.doHLTimerEnabled, doHLMs);
    m_doHLMs = doHLMs;
    liveChanged(); // a start, stop or suspension changes the state the live lines show
}

void FormMain::showNotice(const std::string& text, const std::string& title)
{
    m_notice.show(m_window, text, title);
}

void FormMain::hideNotice()
{
    m_notice.hide();
}

void FormMain::graphDataChanged()
{
    GraphFrameView& graph = m_frmGraph->view();
    graph.setGraphBuffer(m_meter->state().graph.get());
    const GraphView& view = m_meter->state().graphView;
    graph.GraphDataDisplay(view.timeShift, view.zoom);
}

void FormMain::graphFrameChanged()
{
    m_frmGraph->GraphFrameDisplay();
}

void FormMain::captureTaken(const CaptureBitmap& screen)
{
    if (!m_layout.frmDebugVisible)
        return;
    const Frame image = toFrame(screen);
    for (std::size_t region = 0; region < 3; ++region) {
        m_previews[region] = crop(image, m_meter->settings().CaptureRegion[region]);
        const RECT at = deviceRect(m_layout.picCapture[region], m_dpi);
        InvalidateRect(m_window, &at, FALSE);
    }
}

void FormMain::captureCaption(int region, const std::string& caption)
{
    if (region >= 0 && region < 3)
        setText(m_lblCapture[static_cast<std::size_t>(region)], caption);
}

void FormMain::recognizeElapsed(const std::string& text)
{
    setText(m_lblElapse, text);
}

void FormMain::liveChanged()
{
    if (m_meter == nullptr)
        return;
    const LiveView view = meterLiveView(*m_meter);
    setText(m_lblLiveRates, view.rates);
    setText(m_lblLiveOutlook, view.outlook);
    m_compact->show(view);
}

void FormMain::sessionReset()
{
    hideNotice();
}

void FormMain::debugModeChanged()
{
    layout(); // shows or hides the debug area
}

void FormMain::runCommand(MenuCommand command)
{
    if (!m_commands)
        return;
    switch (m_commands->run(command)) {
    case WindowAction::Close: SendMessageW(m_window, WM_CLOSE, 0, 0); break;
    case WindowAction::ShowOptions: menuOption_Click(); break;
    case WindowAction::ShowVersion:
        showVersionWindow(m_window, FormMainCommands::versionHeading(m_meter->settings().SearchWindowName));
        break;
    case WindowAction::ToggleCompact: toggleCompact(); break;
    case WindowAction::ShowHistory: showHistory(); break;
    case WindowAction::None: break;
    }
}

void FormMain::menuOption_Click()
{
    OptionsContext context = m_options;
    const auto& capture = m_meter->cycle().lastCapture();
    context.lastCapture = capture ? &*capture : nullptr;
    context.settingsChanged = [this] { settingsChanged(); };
    context.debugSwitch = {[this] { return m_meter->state().DebugMode; }, [this](bool on) { m_meter->setDebugMode(on); }};
    if (context.config != nullptr)
        ShowFormOption(m_window, context);
}

void FormMain::settingsChanged()
{
    setText(m_window, programTitle(m_meter->settings().SearchWindowName));
    if (followLanguageSetting(m_meter->settings(), m_shownLanguage))
        retranslate();
    if (m_gestures)
        m_gestures->followSetting();
    m_meter->settingsChanged(); // the level watch follows at once, its timer with it
    // The graph may have been switched on or off: the window snaps to its new limits.
    layout();
    // A load may have moved the compact window or changed what the live lines show.
    m_compact->followSettings();
    liveChanged();
}

void FormMain::saveSettings()
{
    // Without the configuration file (tests) the settings hold the change until the end.
    // Only the window's place is written: option edits meant for this run stay unsaved.
    if (m_options.config != nullptr)
        m_options.config->run(ConfigFile::SaveWindowPlace);
}

void FormMain::toggleCompact()
{
    if (m_compact->isOpen())
        m_compact->close();
    else
        m_compact->open(meterLiveView(*m_meter));
}

void FormMain::showHistory()
{
    Prompter& prompter = m_options.prompter != nullptr ? *m_options.prompter : m_ownPrompter;
    m_history.show(m_window, historyFilePath(m_meter->settings()), prompter, m_exportChooser);
}

void FormMain::onTimer(UINT_PTR id)
{
    if (m_meter == nullptr)
        return;
    if (id == kTimCaptureInterval)
        m_meter->cycle().timCaptureInterval_Timer();
    else if (id == kTimDoHLInterval)
        m_meter->watch().timDoHLInterval_Timer();
}

void FormMain::onClose()
{
    if (!m_closing && m_meter != nullptr) {
        m_closing = true;
        m_commands->closing();
        if (m_gestures)
            m_gestures->Form_Unload();
        m_notice.hide();
        m_compact->closeWithMeter();
    }
    DestroyWindow(m_window);
    PostQuitMessage(0);
}

void FormMain::paintPreviews(HDC dc)
{
    if (!m_layout.frmDebugVisible)
        return;
    RECT frame = deviceRect(m_layout.frmDebug, m_dpi);
    DrawEdge(dc, &frame, EDGE_ETCHED, BF_RECT);
    for (std::size_t region = 0; region < 3; ++region) {
        const RECT at = deviceRect(m_layout.picCapture[region], m_dpi);
        FillRect(dc, &at, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
        if (m_previews[region])
            paintFrame(dc, *m_previews[region], at);
    }
}

void FormMain::drawTempStop(const DRAWITEMSTRUCT& item)
{
    RECT area = item.rcItem;
    const bool pressed = (item.itemState & ODS_SELECTED) != 0;
    DrawFrameControl(item.hDC, &area, DFC_BUTTON, DFCS_BUTTONPUSH | (pressed ? DFCS_PUSHED : 0));
    if (m_tempStopRed) {
        RECT inside = area;
        InflateRect(&inside, -2, -2);
        HBRUSH red = CreateSolidBrush(RGB(255, 0, 0));
        FillRect(item.hDC, &inside, red);
        DeleteObject(red);
    }
    const std::wstring caption = wide(tr(kTempStopCaption));
    SetBkMode(item.hDC, TRANSPARENT);
    SetTextColor(item.hDC, GetSysColor((item.itemState & ODS_DISABLED) != 0 ? COLOR_GRAYTEXT : COLOR_BTNTEXT));
    if (pressed)
        OffsetRect(&area, 1, 1);
    DrawTextW(item.hDC, caption.c_str(), static_cast<int>(caption.size()), &area,
              DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    if ((item.itemState & ODS_FOCUS) != 0) {
        InflateRect(&area, -4, -4);
        DrawFocusRect(item.hDC, &area);
    }
}

LRESULT FormMain::handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    // Every command and timer traps its own errors; this is the last guard before the
    // system's message dispatch, which no exception may cross.
    try {
        switch (message) {
        case WM_COMMAND: {
            const int id = LOWORD(wParam);
            if (id >= kMenuBase && id <= commandId(MenuCommand::Version)) {
                runCommand(static_cast<MenuCommand>(id - kMenuBase));
            } else if (m_meter != nullptr && id == kCmdTempStop) {
                m_meter->cycle().cmdTempStop_Click(m_meter->settings().StartDelay);
            } else if (m_meter != nullptr && id == kCmdCapture) {
                m_meter->cycle().cmdCapture_Click();
            } else if (m_meter != nullptr && id == kCmdRecognize) {
                m_meter->cycle().cmdRecognize_Click();
            }
            return 0;
        }
        case WM_TIMER: onTimer(wParam); return 0;
        case WM_SIZE:
            if (wParam != SIZE_MINIMIZED)
                layout();
            return 0;
        case WM_GETMINMAXINFO:
            if (m_window != nullptr)
                minimumTrackSize(*reinterpret_cast<MINMAXINFO*>(lParam));
            return 0;
        case WM_DPICHANGED: {
            m_dpi = Dpi{HIWORD(wParam)};
            createFonts();
            for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
                SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(child == m_txtLog ? m_logFont.get() : m_font.get()), TRUE);
            const auto* suggested = reinterpret_cast<const RECT*>(lParam);
            SetWindowPos(window, nullptr, suggested->left, suggested->top, suggested->right - suggested->left,
                         suggested->bottom - suggested->top, SWP_NOZORDER | SWP_NOACTIVATE);
            return 0;
        }
        case WM_ACTIVATE:
            // Form_Activate: the graph's frame is drawn again when the player comes back.
            if (LOWORD(wParam) != WA_INACTIVE && graphOn())
                m_frmGraph->GraphFrameDisplay();
            break;
        case WM_LBUTTONUP:
            // Form_Click: a click on the window's background repaints everything.
            writeLog(m_log, "Click : Window Refresh ");
            RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
            return 0;
        case WM_CTLCOLORSTATIC:
            if (reinterpret_cast<HWND>(lParam) == m_txtLog) {
                // The log box is read-only but reads as a text, on the window colour.
                SetBkColor(reinterpret_cast<HDC>(wParam), GetSysColor(COLOR_WINDOW));
                return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_WINDOW));
            }
            break;
        case WM_DRAWITEM:
            if (wParam == kCmdTempStop) {
                drawTempStop(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
                return TRUE;
            }
            break;
        case WM_PAINT: {
            PAINTSTRUCT ps;
            HDC dc = BeginPaint(window, &ps);
            RECT client{};
            GetClientRect(window, &client);
            // The etched separator under the menu bar.
            RECT line{0, 0, client.right, 2};
            DrawEdge(dc, &line, EDGE_ETCHED, BF_TOP);
            paintPreviews(dc);
            EndPaint(window, &ps);
            return 0;
        }
        case WM_CLOSE: onClose(); return 0;
        case WM_DESTROY:
            for (UINT_PTR id : {kTimCaptureInterval, kTimDoHLInterval})
                KillTimer(window, id);
            m_timerOn = {};
            m_window = nullptr;
            return 0;
        default: break;
        }
    } catch (const RuntimeError& error) {
        try {
            m_log.writeErrorTrap("FormMain", error.number());
        } catch (const RuntimeError&) {
        }
        return 0;
    } catch (const std::exception&) {
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

} // namespace tvx::win32ui
