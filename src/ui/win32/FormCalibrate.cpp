#include "FormCalibrate.h"

#include "DialogSupport.h"
#include "GlyphControl.h"
#include "ScreenPicture.h"

#include "ports/Waiter.h"
#include "view/Calibration.h"
#include "view/OptionFields.h"

#include <commctrl.h>

#include <algorithm>
#include <map>

namespace tvx::win32ui {
namespace {

enum Id : int {
    cboZoom = 100,
    cmdCapture,
    picScreen,
    cmdLearn,
    lblStatus,
    cmdApply,
    cmdCancel,
    optRegion0 = 110,
    txtNumber0 = 120,
    picColumns0 = 130,
    lblReading0 = 140,
    lblMessage0 = 150,
    lblName0 = 160,
    picGlyph0 = 1000, // + region * 100 + pattern
};

// Pixels at 96 dpi: the top row, the picture between, the panel of regions and buttons.
constexpr int kClientWidth = 960;
constexpr int kClientHeight = 700;
constexpr int kMargin = 8;
constexpr int kPictureTop = 42;
constexpr int kPanelWidth = kClientWidth - 2 * kMargin;
constexpr int kPanelHeight = 360;
constexpr int kRowHeight = 98;
constexpr int kGlyphScale = 2;
constexpr int kGlyphCell = 30;

const std::map<std::string, int, std::less<>>& controlIds()
{
    static const std::map<std::string, int, std::less<>> ids = [] {
        std::map<std::string, int, std::less<>> all{
            {"cboZoom", cboZoom},   {"cmdCapture", cmdCapture}, {"picScreen", picScreen}, {"cmdLearn", cmdLearn},
            {"lblStatus", lblStatus}, {"cmdApply", cmdApply},   {"cmdCancel", cmdCancel},
        };
        for (int r = 0; r < kRegionCount; ++r) {
            const std::string index = std::to_string(r);
            all["optRegion" + index] = optRegion0 + r;
            all["txtNumber" + index] = txtNumber0 + r;
            all["picColumns" + index] = picColumns0 + r;
            all["lblReading" + index] = lblReading0 + r;
            all["lblMessage" + index] = lblMessage0 + r;
            for (int k = 0; k < kPatternCount; ++k)
                all["picGlyph" + std::to_string(r * 100 + k)] = picGlyph0 + r * 100 + k;
        }
        return all;
    }();
    return ids;
}

COLORREF colourRef(std::uint32_t rgb)
{
    return RGB(rgb >> 16 & 0xFF, rgb >> 8 & 0xFF, rgb & 0xFF);
}

class FormCalibrateWindow : DialogControls {
public:
    explicit FormCalibrateWindow(const CalibrationContext& context)
        : m_context(context), m_calibration(*context.settings, context.log)
    {
        if (context.screenshot)
            m_calibration.picker().setScreen(*context.screenshot);
        for (GlyphCanvas& columns : m_columns)
            columns.setPixelSize(kGlyphScale);
        for (auto& row : m_glyphs)
            for (GlyphCanvas& glyph : row)
                glyph.setPixelSize(kGlyphScale);
    }

    bool run(HWND owner)
    {
        m_window = createDialog(owner, &FormCalibrateWindow::dialogProc, reinterpret_cast<LPARAM>(this),
                                WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | DS_MODALFRAME);
        if (!m_window)
            return false;
        placeOver(m_window, owner, kClientWidth, kClientHeight);
        RECT frame;
        GetWindowRect(m_window, &frame);
        m_minimum = {frame.right - frame.left, frame.bottom - frame.top};
        layout();
        runModal(m_window, owner, [this] { return m_done; });
        DestroyWindow(m_window);
        return m_confirmed;
    }

private:
    static FormCalibrateWindow* of(HWND window, UINT message, LPARAM lParam)
    {
        if (message == WM_INITDIALOG)
            SetWindowLongPtrW(window, DWLP_USER, lParam);
        return reinterpret_cast<FormCalibrateWindow*>(GetWindowLongPtrW(window, DWLP_USER));
    }

    static INT_PTR CALLBACK dialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        FormCalibrateWindow* self = of(window, message, lParam);
        if (!self)
            return FALSE;
        switch (message) {
        case WM_INITDIALOG:
            self->m_window = window;
            self->guard([self] { self->build(); });
            return TRUE;
        case WM_COMMAND:
            self->guard([=] { self->command(LOWORD(wParam), HIWORD(wParam)); });
            return TRUE;
        case WM_CLOSE:
            self->m_done = true;
            return TRUE;
        case WM_SIZE:
            self->layout();
            return TRUE;
        case WM_GETMINMAXINFO:
            if (self->m_minimum.x > 0)
                reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = self->m_minimum;
            return TRUE;
        default:
            return FALSE;
        }
    }

    // The panel of regions and buttons forwards its controls' reports and colours the names.
    static INT_PTR CALLBACK panelProc(HWND panel, UINT message, WPARAM wParam, LPARAM lParam)
    {
        FormCalibrateWindow* self = of(panel, message, lParam);
        if (!self || message == WM_INITDIALOG)
            return FALSE;
        if (message == WM_COMMAND) {
            self->guard([=] { self->command(LOWORD(wParam), HIWORD(wParam)); });
            return TRUE;
        }
        if (message == WM_CTLCOLORSTATIC)
            return self->colour(reinterpret_cast<HDC>(wParam), GetDlgCtrlID(reinterpret_cast<HWND>(lParam)));
        return FALSE;
    }

    template <typename Action>
    void guard(Action action)
    {
        guarded(m_context.log, "FormCalibrate", action);
    }

    // ---- building ----

    void build()
    {
        setText(m_window, kCalibrationTitle);
        label(m_window, kCalibrationRegionCaption, 8, 13, 150);
        for (int r = 0; r < kRegionCount; ++r)
            add(m_window, L"BUTTON", regionCaption(r), BS_AUTORADIOBUTTON | WS_TABSTOP | (r == 0 ? WS_GROUP : 0),
                optRegion0 + r, 160 + r * 100, 9, 96, 24);
        CheckRadioButton(m_window, optRegion0, optRegion0 + kRegionCount - 1, optRegion0);
        label(m_window, kCalibrationZoomCaption, 466, 13, 48, 18, SS_RIGHT);
        const HWND zoom = add(m_window, L"COMBOBOX", "", CBS_DROPDOWNLIST | WS_TABSTOP | WS_VSCROLL | WS_GROUP,
                              cboZoom, 516, 8, 80, 200);
        for (int z = 1; z <= RegionPicker::kMaxZoom; z *= 2)
            SendMessageW(zoom, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wide(RegionPicker::zoomCaption(z)).c_str()));
        SendMessageW(zoom, CB_SETCURSEL, 0, 0);
        button(m_window, kCalibrationCaptureCaption, cmdCapture, 612, 7, 200, 28);
        EnableWindow(m_controls[cmdCapture], m_context.screen && m_context.waiter);
        m_controls[picScreen] = createScreenPicture(m_window, picScreen, m_calibration.picker(), kMargin, kPictureTop,
                                                    kPanelWidth, 280);
        m_panel = createDialog(m_window, &FormCalibrateWindow::panelProc, reinterpret_cast<LPARAM>(this),
                               WS_CHILD | WS_VISIBLE | DS_CONTROL);
        buildPanel();
        refreshAll();
    }

    void buildPanel()
    {
        add(m_panel, L"BUTTON", kCalibrationNumbersCaption, BS_GROUPBOX, 0, 0, 0,
            kPanelWidth, 22 + kRegionCount * kRowHeight + 2);
        for (int r = 0; r < kRegionCount; ++r)
            buildRow(r, 22 + r * kRowHeight);
        const int bottom = 30 + kRegionCount * kRowHeight;
        button(m_panel, kCalibrationLearnCaption, cmdLearn, 0, bottom, 100, 28);
        label(m_panel, "", 110, bottom + 6, 620, 18, SS_LEFT, lblStatus);
        button(m_panel, kCalibrationApplyCaption, cmdApply, kPanelWidth - 200, bottom, 96, 28);
        button(m_panel, kCalibrationCancelCaption, cmdCancel, kPanelWidth - 100, bottom, 96, 28);
    }

    void buildRow(int region, int top)
    {
        const auto r = static_cast<std::size_t>(region);
        label(m_panel, regionCaption(region), 10, top + 6, 80, 18, SS_LEFT, lblName0 + region);
        const HWND number = add(m_panel, L"EDIT", "", WS_BORDER | WS_TABSTOP | ES_AUTOHSCROLL, txtNumber0 + region, 92,
                                top + 2, 120, 24);
        SendMessageW(number, EM_SETCUEBANNER, TRUE, reinterpret_cast<LPARAM>(wide(kCalibrationSkipHint).c_str()));
        filterCharacters(number, &Calibration::acceptsNumberCharacter);
        // Room below the columns for the scroll bar a wide region brings.
        m_controls[picColumns0 + region] =
            createGlyphControl(m_panel, picColumns0 + region, m_columns[r], 222, top, 330, 56);
        label(m_panel, "", 562, top + 6, 374, 18, SS_LEFT, lblReading0 + region);
        label(m_panel, kCalibrationGlyphsCaption, 92, top + 70, 120, 18, SS_RIGHT);
        for (int k = 0; k < kPatternCount; ++k) {
            const int id = picGlyph0 + region * 100 + k;
            m_controls[id] =
                createGlyphControl(m_panel, id, m_glyphs[r][static_cast<std::size_t>(k)], 222 + k * kGlyphCell,
                                   top + 60, kGlyphCell - 2, 36);
        }
        label(m_panel, "", 562, top + 28, 374, 66, SS_LEFT, lblMessage0 + region);
    }

    void layout()
    {
        if (!m_panel)
            return;
        RECT client;
        GetClientRect(m_window, &client);
        const int margin = scaled(kMargin);
        const int panelTop = std::max(scaled(kPictureTop + 80), static_cast<int>(client.bottom) - scaled(kPanelHeight));
        SetWindowPos(m_panel, nullptr, margin, panelTop, scaled(kPanelWidth), scaled(kPanelHeight), SWP_NOZORDER);
        SetWindowPos(m_controls[picScreen], nullptr, margin, scaled(kPictureTop), client.right - 2 * margin,
                     panelTop - margin - scaled(kPictureTop), SWP_NOZORDER);
    }

    // ---- showing ----

    void refreshAll()
    {
        for (int r = 0; r < kRegionCount; ++r)
            refreshRegion(r);
    }

    void refreshRegion(int region)
    {
        const auto r = static_cast<std::size_t>(region);
        const RegionPreview preview = m_calibration.preview(region);
        const int rows = std::max(1, preview.rows);
        m_columns[r].setRows(rows);
        m_columns[r].setColumns(preview.columns);
        updateGlyphControl(m_controls[picColumns0 + region]);
        setText(m_controls[lblReading0 + region], Calibration::readingText(preview));

        const CalibrationRegionView view = m_calibration.view(region);
        for (std::size_t k = 0; k < kPatternCount; ++k) {
            GlyphCanvas& glyph = m_glyphs[r][k];
            glyph.setRows(std::max(1, view.rows));
            glyph.setColumns(view.glyphs[k]);
            glyph.setChecked(view.learnt[k]); // a frame marks what was learnt
            const HWND control = m_controls[picGlyph0 + region * 100 + static_cast<int>(k)];
            // As large as the glyph, so the frame fits it; the cell bounds a wide one.
            SetWindowPos(control, nullptr, 0, 0, std::min(glyph.width(), scaled(kGlyphCell - 2)), glyph.height(),
                         SWP_NOMOVE | SWP_NOZORDER);
            updateGlyphControl(control);
        }
        m_refused[r] = view.refused;
        setText(m_controls[lblMessage0 + region], view.text);
        InvalidateRect(m_controls[lblMessage0 + region], nullptr, TRUE);
    }

    INT_PTR colour(HDC dc, int id)
    {
        const bool name = id >= lblName0 && id < lblName0 + kRegionCount;
        const bool refused = id >= lblMessage0 && id < lblMessage0 + kRegionCount &&
                             m_refused[static_cast<std::size_t>(id - lblMessage0)];
        if (!name && !refused)
            return FALSE;
        SetTextColor(dc, name ? colourRef(regionTextColour(id - lblName0)) : RGB(192, 0, 0));
        SetBkMode(dc, TRANSPARENT);
        return reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_BTNFACE));
    }

    // ---- events ----

    void command(int id, int code)
    {
        if (id >= optRegion0 && id < optRegion0 + kRegionCount && code == BN_CLICKED) {
            m_calibration.picker().selectRegion(id - optRegion0);
            InvalidateRect(m_controls[picScreen], nullptr, FALSE);
            return;
        }
        if (id >= txtNumber0 && id < txtNumber0 + kRegionCount && code == EN_CHANGE)
            return m_calibration.setTyped(id - txtNumber0, windowText(m_controls[id]));
        if (id == picScreen && code == kRegionMoved) {
            m_calibration.regionMoved(m_calibration.picker().selectedRegion());
            return refreshRegion(m_calibration.picker().selectedRegion());
        }
        if (id == cboZoom && code == CBN_SELCHANGE) {
            const auto index = SendMessageW(m_controls[cboZoom], CB_GETCURSEL, 0, 0);
            m_calibration.picker().setZoom(1 << std::clamp<int>(static_cast<int>(index), 0, 4));
            return refreshScreenPicture(m_controls[picScreen]);
        }
        if (code != BN_CLICKED)
            return;
        switch (id) {
        case cmdLearn:
            setText(m_controls[lblStatus], m_calibration.learnCommand());
            return refreshAll();
        case cmdCapture: return capture();
        case cmdApply:
            m_calibration.applyCommand(*m_context.settings);
            m_confirmed = true;
            m_done = true;
            return;
        case cmdCancel:
        case IDCANCEL: m_done = true; return;
        default: return;
        }
    }

    void capture()
    {
        if (!m_context.screen || !m_context.waiter)
            return;
        const HWND button = m_controls[cmdCapture];
        EnableWindow(button, FALSE);
        setText(m_controls[lblStatus], m_calibration.beginCapture());
        m_context.waiter->WaitMs(10000); // events flow; the window stays until this returns
        setText(m_controls[lblStatus], m_calibration.captureScreen(*m_context.screen));
        refreshScreenPicture(m_controls[picScreen]);
        refreshAll();
        EnableWindow(button, TRUE);
    }

    CalibrationContext m_context;
    Calibration m_calibration;
    HWND m_window = nullptr;
    HWND m_panel = nullptr;
    POINT m_minimum{};
    std::array<GlyphCanvas, kRegionCount> m_columns;
    std::array<std::array<GlyphCanvas, kPatternCount>, kRegionCount> m_glyphs;
    std::array<bool, kRegionCount> m_refused{};
    bool m_done = false;
    bool m_confirmed = false;
};

} // namespace

int calibrateControlId(std::string_view name)
{
    return controlIdIn(controlIds(), name);
}

bool ShowFormCalibrate(HWND owner, const CalibrationContext& context)
{
    if (!context.settings)
        return false;
    FormCalibrateWindow window(context);
    return window.run(owner);
}

} // namespace tvx::win32ui
