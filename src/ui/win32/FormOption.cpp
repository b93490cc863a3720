#include "FormOption.h"

#include "DialogSupport.h"
#include "FormCalibrate.h"
#include "GlyphControl.h"

#include "base/Errors.h"
#include "base/HeldFlag.h"
#include "config/ConfigFile.h"
#include "ports/Prompter.h"
#include "ports/Waiter.h"
#include "view/OptionsEditor.h"
#include "win32/Win32Text.h"

#include <commctrl.h>
#include <commdlg.h>
#include <shlobj.h>

#include <algorithm>
#include <map>
#include <memory>

namespace tvx::win32ui {
namespace {

// Controls that are not settings fields; the fields take their index from a base.
enum Fixed : int {
    cmdSave = 100,
    cmdLoad,
    cmdInit,
    cmdClose,
    tabOption,
    cmdCapture,
    lblCaptureStatus,
    cmdTakeColumns,
    cmdAddColumn,
    cmdRemoveColumn,
    cmdClearPattern,
    txtPattern,
    lblEditor,
    lblWidthNote,
    lblPatternResult,
    picEditor,
    picColumns,
    cmdCalibrate,
    optPatternRegion0 = 130,
    picPattern0 = 140,
    picCapture0 = 160,
    picBinary0 = 170,
    lblResult0 = 180,
    kNumberBase = 2000,
    kFlagBase = 3000,
    kTextBase = 4000,
    kChoiceBase = 5000,
    kBrowseBase = 6000,
};

constexpr int kClientWidth = 800;
constexpr int kClientHeight = 680;
constexpr int kPreviewScale = 3;

const std::map<std::string, int, std::less<>>& controlIds()
{
    static const std::map<std::string, int, std::less<>> ids = [] {
        std::map<std::string, int, std::less<>> all{
            {"cmdSave", cmdSave},
            {"cmdLoad", cmdLoad},
            {"cmdInit", cmdInit},
            {"cmdClose", cmdClose},
            {"tabOption", tabOption},
            {"cmdCapture", cmdCapture},
            {"lblCaptureStatus", lblCaptureStatus},
            {"cmdTakeColumns", cmdTakeColumns},
            {"cmdAddColumn", cmdAddColumn},
            {"cmdRemoveColumn", cmdRemoveColumn},
            {"cmdClearPattern", cmdClearPattern},
            {"txtPattern", txtPattern},
            {"lblEditor", lblEditor},
            {"lblWidthNote", lblWidthNote},
            {"lblPatternResult", lblPatternResult},
            {"picEditor", picEditor},
            {"picColumns", picColumns},
            {"cmdCalibrate", cmdCalibrate},
        };
        for (int r = 0; r < kRegionCount; ++r) {
            const std::string index = std::to_string(r);
            all["optPatternRegion" + index] = optPatternRegion0 + r;
            all["picCapture" + index] = picCapture0 + r;
            all["picBinary" + index] = picBinary0 + r;
            all["lblResult" + index] = lblResult0 + r;
        }
        for (int j = 0; j < kPatternCount; ++j)
            all["picPattern" + std::to_string(j)] = picPattern0 + j;
        const auto add = [&all](const auto& fields, int base) {
            for (std::size_t i = 0; i < fields.size(); ++i)
                all[fields[i].name] = base + static_cast<int>(i);
        };
        add(numberFields(), kNumberBase);
        add(flagFields(), kFlagBase);
        add(textFields(), kTextBase);
        add(choiceFields(), kChoiceBase);
        for (std::size_t i = 0; i < textFields().size(); ++i)
            if (!textFields()[i].browseName.empty())
                all[textFields()[i].browseName] = kBrowseBase + static_cast<int>(i);
        return all;
    }();
    return ids;
}

template <typename Field>
const Field* fieldAt(const std::vector<Field>& fields, int id, int base)
{
    const int index = id - base;
    return index >= 0 && index < static_cast<int>(fields.size()) ? &fields[static_cast<std::size_t>(index)] : nullptr;
}

template <typename Field>
int idOf(const std::vector<Field>& fields, const Field* field, int base)
{
    return base + static_cast<int>(field - fields.data());
}

// Keeps commas out of the texts as they are typed; the file has no quoting.
LRESULT CALLBACK textProc(HWND edit, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR)
{
    if (message == WM_CHAR && !OptionsEditor::acceptsTextCharacter(static_cast<char32_t>(wParam)))
        return 0;
    if (message == WM_NCDESTROY)
        RemoveWindowSubclass(edit, &textProc, 1);
    return DefSubclassProc(edit, message, wParam, lParam);
}

class FormOptionWindow : DialogControls {
public:
    FormOptionWindow(const OptionsContext& context)
        : m_context(context), m_config(*context.config),
          m_prompter(context.prompter ? *context.prompter : context.config->prompter()),
          m_editor(context.config->settings(), context.lastCapture)
    {
        m_editor.setDebugSwitch(context.debugSwitch);
        for (GlyphCanvas& tile : m_tiles) {
            tile = GlyphCanvas(GlyphCanvas::Mode::Button);
            tile.setPixelSize(4);
        }
        for (GlyphCanvas& binary : m_binary)
            binary.setPixelSize(kPreviewScale);
        m_editorCanvas.setPixelSize(11);
        m_columnsCanvas.setPixelSize(5);
    }

    void run(HWND owner)
    {
        INITCOMMONCONTROLSEX classes{sizeof classes, ICC_TAB_CLASSES | ICC_STANDARD_CLASSES};
        InitCommonControlsEx(&classes);
        m_window = createDialog(owner, &FormOptionWindow::dialogProc, reinterpret_cast<LPARAM>(this),
                                WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX | DS_MODALFRAME);
        if (!m_window)
            return;
        placeOver(m_window, owner, kClientWidth, kClientHeight);
        layout();
        runModal(m_window, owner, [this] { return m_done; });
        DestroyWindow(m_window);
    }

private:
    static INT_PTR CALLBACK dialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == WM_INITDIALOG) {
            SetWindowLongPtrW(window, DWLP_USER, lParam);
            auto* self = reinterpret_cast<FormOptionWindow*>(lParam);
            self->m_window = window;
            self->guarded([self] { self->build(); });
            return TRUE;
        }
        auto* self = reinterpret_cast<FormOptionWindow*>(GetWindowLongPtrW(window, DWLP_USER));
        if (!self)
            return FALSE;
        switch (message) {
        case WM_COMMAND:
            self->guarded([=] { self->command(LOWORD(wParam), HIWORD(wParam)); });
            return TRUE;
        case WM_NOTIFY:
            if (reinterpret_cast<const NMHDR*>(lParam)->code == TCN_SELCHANGE)
                self->showPage(self->currentPage());
            return TRUE;
        case WM_CLOSE:
            self->guarded([self] { self->close(); });
            return TRUE;
        case WM_SIZE:
            self->layout();
            return TRUE;
        case WM_MOUSEWHEEL: // with the focus on the tabs or the buttons: the page scrolls
            SendMessageW(self->m_pages[static_cast<std::size_t>(self->currentPage())], message, wParam, lParam);
            return TRUE;
        case WM_GETMINMAXINFO: {
            auto* limits = reinterpret_cast<MINMAXINFO*>(lParam);
            limits->ptMinTrackSize = {scaled(480), scaled(360)};
            return TRUE;
        }
        default:
            return FALSE;
        }
    }

    // A page forwards what its controls report to the window.
    static INT_PTR CALLBACK pageProc(HWND page, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == WM_INITDIALOG) {
            SetWindowLongPtrW(page, DWLP_USER, lParam);
            return FALSE;
        }
        auto* self = reinterpret_cast<FormOptionWindow*>(GetWindowLongPtrW(page, DWLP_USER));
        if (!self)
            return FALSE;
        if (message != WM_COMMAND) {
            const auto index = static_cast<std::size_t>(
                std::find(self->m_pages.begin(), self->m_pages.end(), page) - self->m_pages.begin());
            return index < self->m_scrollers.size() && self->m_scrollers[index].handle(message, wParam, lParam);
        }
        self->guarded([=] { self->command(LOWORD(wParam), HIWORD(wParam)); });
        return TRUE;
    }

    // Nothing escapes into the message loop: an error is logged and the window goes on.
    template <typename Action>
    void guarded(Action action)
    {
        try {
            action();
        } catch (const RuntimeError& e) {
            log(errorTrapLine("FormOption", e.number()));
        } catch (const std::exception&) {
            log(errorTrapLine("FormOption", ErrorNumber::OutOfMemory));
        }
    }

    void log(const std::string& line)
    {
        if (DebugLog* debug = m_config.log()) {
            try {
                debug->WriteDebugLog(line);
            } catch (const RuntimeError&) {
            }
        }
    }

    // ---- building ----

    HWND glyph(HWND parent, int id, GlyphCanvas& canvas, int x, int y, int width, int height)
    {
        const HWND control = createGlyphControl(parent, id, canvas, x, y, width, height);
        m_controls[id] = control;
        return control;
    }

    void build()
    {
        win32ui::setText(m_window, kOptionsTitle);
        m_tabs = add(m_window, WC_TABCONTROLW, "", WS_TABSTOP | WS_CLIPSIBLINGS, tabOption, 8, 8, 100, 100);
        for (int t = 0; t < kOptionTabCount; ++t) {
            const std::wstring caption = wide(optionTabCaption(static_cast<OptionTab>(t)));
            TCITEMW item{};
            item.mask = TCIF_TEXT;
            item.pszText = const_cast<wchar_t*>(caption.c_str());
            SendMessageW(m_tabs, TCM_INSERTITEMW, static_cast<WPARAM>(t), reinterpret_cast<LPARAM>(&item));
            m_pages[static_cast<std::size_t>(t)] =
                createDialog(m_window, &FormOptionWindow::pageProc, reinterpret_cast<LPARAM>(this),
                             WS_CHILD | DS_CONTROL | WS_CLIPSIBLINGS);
        }
        buildRegionsPage(m_pages[0]);
        buildPatternsPage(m_pages[1]);
        buildRowsPage(m_pages[2], OptionTab::Timing);
        buildRowsPage(m_pages[3], OptionTab::Files);
        button(m_window, kOptionsSaveCaption, cmdSave, 0, 0, 80, 28);
        button(m_window, kOptionsLoadCaption, cmdLoad, 0, 0, 80, 28);
        button(m_window, kOptionsInitCaption, cmdInit, 0, 0, 80, 28);
        button(m_window, kOptionsCloseCaption, cmdClose, 0, 0, 80, 28);
        // Each page scrolls when the window is lower or narrower than its controls need.
        for (std::size_t t = 0; t < m_pages.size(); ++t)
            m_scrollers[t].attach(m_pages[t]);
        refresh();
        showPage(0);
    }

    void numberButton(HWND page, const NumberField& field, int x, int y)
    {
        button(page, "", idOf(numberFields(), &field, kNumberBase), x, y, 72, 26);
    }

    void buildRegionsPage(HWND page)
    {
        for (int r = 0; r < kRegionCount; ++r) {
            const int top = 6 + r * 178;
            add(page, L"BUTTON", regionCaption(r), BS_GROUPBOX, 0, 8, top, 762, 172);
            int order = 0;
            for (const NumberField* field : regionFields(r)) {
                const int x = 14 + (order % 4) * 188;
                const int y = top + 22 + (order / 4) * 32;
                label(page, field->caption, x, y + 5, 104, 18, SS_RIGHT);
                numberButton(page, *field, x + 108, y);
                ++order;
            }
            label(page, kPictureCaption, 14, top + 94, 60, 18, SS_RIGHT);
            const HWND image = createPixelImage(page, picCapture0 + r, 80, top + 88, 680, 31);
            m_controls[picCapture0 + r] = image;
            label(page, kBinaryCaption, 14, top + 128, 60, 18, SS_RIGHT);
            glyph(page, picBinary0 + r, m_binary[static_cast<std::size_t>(r)], 80, top + 122, 444, 46);
            label(page, "", 534, top + 128, 230, 18, SS_LEFT, lblResult0 + r);
        }
        const HWND capture = button(page, kPatternCaptureCaption, cmdCapture, 14, 544, 160, 28);
        EnableWindow(capture, m_context.screen && m_context.waiter && m_context.clock);
        // One line, so the page needs no scrolling; a long saved path is shortened in its middle.
        label(page, kPatternCaptureHint, 184, 550, 428, 18, SS_LEFT | SS_PATHELLIPSIS,
              lblCaptureStatus);
        // Regions dragged on the screen and templates learnt from it, kept only when confirmed.
        button(page, kCalibrateCaption, cmdCalibrate, 622, 544, 140, 28);
    }

    void buildPatternsPage(HWND page)
    {
        label(page, kPatternRegionCaption, 16, 12, 50, 18);
        for (int r = 0; r < kRegionCount; ++r)
            add(page, L"BUTTON", regionCaption(r), BS_AUTORADIOBUTTON | WS_TABSTOP | (r == 0 ? WS_GROUP : 0),
                optPatternRegion0 + r, 70 + r * 116, 8, 110, 24);
        add(page, L"BUTTON", kPatternTilesCaption, BS_GROUPBOX, 0, 8, 38, 762, 112);
        for (int j = 0; j < kPatternCount; ++j) {
            glyph(page, picPattern0 + j, m_tiles[static_cast<std::size_t>(j)], 18 + j * 68, 58, 62, 68);
            label(page, patternName(j), 18 + j * 68, 128, 62, 16, SS_CENTER);
        }
        add(page, L"BUTTON", kPatternEditCaption, BS_GROUPBOX, 0, 8, 154, 762, 232);
        label(page, "", 18, 172, 440, 18, SS_LEFT, lblEditor);
        glyph(page, picEditor, m_editorCanvas, 18, 194, 440, 16 * 11 + 4);
        const std::pair<ShownText, int> tools[] = {
            {kAddColumnCaption, cmdAddColumn}, {kRemoveColumnCaption, cmdRemoveColumn}, {kClearPatternCaption, cmdClearPattern}};
        int y = 194;
        for (const auto& [text, id] : tools) {
            button(page, text, id, 470, y, 150, 26);
            y += 30;
        }
        label(page, kPatternTextCaption, 470, 288, 290, 18);
        const HWND hex = add(page, L"EDIT", "", WS_BORDER | WS_TABSTOP | ES_AUTOHSCROLL | ES_UPPERCASE, txtPattern, 470,
                             308, 292, 24, fixedFont());
        SendMessageW(hex, EM_SETLIMITTEXT, 256, 0);
        label(page, "", 470, 338, 292, 44, SS_LEFT, lblWidthNote);
        add(page, L"BUTTON", kTakeColumnsGroupCaption, BS_GROUPBOX, 0, 8, 390, 762, 182);
        label(page, kTakeColumnsHelp, 18, 406, 744, 32);
        const HWND columns = glyph(page, picColumns, m_columnsCanvas, 18, 440, 744, 16 * 5 + 4 + 18);
        SetWindowLongPtrW(columns, GWL_STYLE, GetWindowLongPtrW(columns, GWL_STYLE) | WS_HSCROLL);
        SetWindowPos(columns, nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_FRAMECHANGED);
        button(page, kTakeColumnsCaption, cmdTakeColumns, 18, 543, 240, 26);
        EnableWindow(m_controls[cmdTakeColumns], FALSE);
        label(page, "", 268, 548, 494, 18, SS_LEFT, lblPatternResult);
        CheckRadioButton(page, optPatternRegion0, optPatternRegion0 + kRegionCount - 1, optPatternRegion0);
    }

    void buildRowsPage(HWND page, OptionTab tab)
    {
        int y = 10;
        for (const OptionRow& row : optionRows(tab)) {
            if (!row.heading.empty()) {
                // A title with an etched rule under it: the rows below belong together.
                label(page, row.heading, 16, y + 4, 746, 18);
                add(page, L"STATIC", "", SS_ETCHEDHORZ, 0, 16, y + 23, 746, 2);
                y += 30;
                continue;
            }
            if (row.flag)
                add(page, L"BUTTON", row.flag->caption, BS_AUTOCHECKBOX | WS_TABSTOP,
                    idOf(flagFields(), row.flag, kFlagBase), 16, y, 236, 24);
            // Captions end where their editors begin; without a switch they may use its room.
            if (!row.caption().empty())
                label(page, row.caption(), row.flag ? 256 : 16, y + 4, row.flag ? 254 : 494, 18, SS_RIGHT);
            if (row.number)
                numberButton(page, *row.number, 516, y);
            if (row.choice)
                add(page, L"COMBOBOX", "", CBS_DROPDOWNLIST | WS_TABSTOP | WS_VSCROLL,
                    idOf(choiceFields(), row.choice, kChoiceBase), 516, y, 246, 160);
            if (row.text) {
                const bool browse = row.text->browse != TextField::Browse::None;
                const int id = idOf(textFields(), row.text, kTextBase);
                const HWND edit = add(page, L"EDIT", "", WS_BORDER | WS_TABSTOP | ES_AUTOHSCROLL, id, 516, y,
                                      browse ? 180 : 246, 24);
                SetWindowSubclass(edit, &textProc, 1, 0);
                if (browse)
                    button(page, kBrowseCaption, kBrowseBase + (id - kTextBase), 700, y, 62, 24);
            }
            // Close enough for the timing page's fourteen rows under five headings to open
            // without a scroll bar.
            y += 30;
        }
    }

    // ---- showing ----

    void layout()
    {
        if (!m_tabs)
            return;
        RECT client;
        GetClientRect(m_window, &client);
        const int margin = scaled(8);
        const int buttonHeight = scaled(28);
        const int buttonsTop = client.bottom - margin - buttonHeight;
        SetWindowPos(m_tabs, nullptr, margin, margin, client.right - 2 * margin, buttonsTop - 2 * margin, SWP_NOZORDER);
        RECT page{margin, margin, client.right - margin, buttonsTop - margin};
        SendMessageW(m_tabs, TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&page));
        for (HWND p : m_pages)
            SetWindowPos(p, HWND_TOP, page.left, page.top, page.right - page.left, page.bottom - page.top, 0);
        const int width = scaled(80);
        int x = margin;
        for (const int id : {cmdSave, cmdLoad, cmdInit}) {
            SetWindowPos(m_controls[id], nullptr, x, buttonsTop, width, buttonHeight, SWP_NOZORDER);
            x += width + scaled(6);
        }
        SetWindowPos(m_controls[cmdClose], nullptr, client.right - margin - width, buttonsTop, width, buttonHeight,
                     SWP_NOZORDER);
    }

    void showPage(int index)
    {
        for (int t = 0; t < kOptionTabCount; ++t)
            ShowWindow(m_pages[static_cast<std::size_t>(t)], t == index ? SW_SHOW : SW_HIDE);
        SendMessageW(m_tabs, TCM_SETCURSEL, static_cast<WPARAM>(index), 0);
    }

    int currentPage() const
    {
        return std::clamp(static_cast<int>(SendMessageW(m_tabs, TCM_GETCURSEL, 0, 0)), 0, kOptionTabCount - 1);
    }

    void setText(int id, std::string_view text)
    {
        if (windowText(m_controls[id]) != text)
            win32ui::setText(m_controls[id], text);
    }

    void refresh()
    {
        const Settings& s = m_editor.settings();
        for (const NumberField& f : numberFields())
            setText(idOf(numberFields(), &f, kNumberBase), m_editor.numberText(f));
        for (const FlagField& f : flagFields()) {
            const HWND box = m_controls[idOf(flagFields(), &f, kFlagBase)];
            EnableWindow(box, m_editor.flagAvailable(f));
            SendMessageW(box, BM_SETCHECK, m_editor.flag(f) ? BST_CHECKED : BST_UNCHECKED, 0);
        }
        for (const TextField& f : textFields()) {
            const int id = idOf(textFields(), &f, kTextBase);
            if (GetFocus() != m_controls[id]) // never under the player's typing
                setText(id, m_editor.text(f));
        }
        for (const ChoiceField& f : choiceFields()) {
            const HWND box = m_controls[idOf(choiceFields(), &f, kChoiceBase)];
            SendMessageW(box, CB_RESETCONTENT, 0, 0);
            for (const ChoiceField::Choice& choice : choicesFor(f, s))
                SendMessageW(box, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wide(choice.caption).c_str()));
            SendMessageW(box, CB_SETCURSEL, chosenIndex(f, s), 0);
        }
        refreshPreviews();
    }

    void refreshPreviews()
    {
        for (int r = 0; r < kRegionCount; ++r) {
            const auto i = static_cast<std::size_t>(r);
            const RegionPreview& preview = m_editor.previews()[i];
            setPixelImage(m_controls[picCapture0 + r], preview.width, preview.height, preview.pixels, kPreviewScale);
            m_binary[i].setRows(preview.rows);
            m_binary[i].setColumns(preview.columns);
            updateGlyphControl(m_controls[picBinary0 + r]);
            setText(lblResult0 + r, m_editor.previewResult(r));
        }
        const PatternView& view = m_editor.patternView();
        for (int j = 0; j < kPatternCount; ++j) {
            GlyphCanvas& tile = m_tiles[static_cast<std::size_t>(j)];
            tile.setRows(view.rows);
            tile.setColumns(view.tiles[static_cast<std::size_t>(j)]);
            tile.setChecked(j == m_editor.patternIndex());
            // Each tile as large as its template, so the frame of the chosen one fits it, and
            // standing on its caption.
            const int height = std::min(tile.height(), scaled(68));
            SetWindowPos(m_controls[picPattern0 + j], nullptr, scaled(18 + j * 68), scaled(126) - height,
                         std::min(tile.width(), scaled(62)), height, SWP_NOZORDER);
            updateGlyphControl(m_controls[picPattern0 + j]);
        }
        m_editorCanvas.setRows(view.rows);
        m_editorCanvas.setColumns(view.editor);
        updateGlyphControl(m_controls[picEditor]);
        m_columnsCanvas.setRows(view.rows);
        m_columnsCanvas.setColumns(view.captureColumns);
        m_columnsCanvas.setSelectionWidth(view.cellWidth);
        updateGlyphControl(m_controls[picColumns]);
        EnableWindow(m_controls[cmdTakeColumns], m_columnsCanvas.selectionLength() > 0);
        setText(lblEditor, view.editorCaption);
        setText(lblWidthNote, view.note);
        setText(lblPatternResult, view.captureResult);
        if (GetFocus() != m_controls[txtPattern])
            setText(txtPattern, view.text);
    }

    // ---- events ----

    void command(int id, int code)
    {
        if (const NumberField* f = fieldAt(numberFields(), id, kNumberBase); f && code == BN_CLICKED)
            return askNumber(*f);
        if (const FlagField* f = fieldAt(flagFields(), id, kFlagBase); f && code == BN_CLICKED) {
            m_editor.setFlag(*f, SendMessageW(m_controls[id], BM_GETCHECK, 0, 0) == BST_CHECKED);
            return changed();
        }
        if (const TextField* f = fieldAt(textFields(), id, kTextBase); f && code == EN_KILLFOCUS)
            return commitText(*f);
        if (const ChoiceField* f = fieldAt(choiceFields(), id, kChoiceBase); f && code == CBN_SELCHANGE) {
            m_editor.choose(*f, static_cast<std::size_t>(SendMessageW(m_controls[id], CB_GETCURSEL, 0, 0)));
            return changed();
        }
        if (const TextField* f = fieldAt(textFields(), id, kBrowseBase); f && code == BN_CLICKED)
            return browse(*f);
        if (id >= picPattern0 && id < picPattern0 + kPatternCount && code == BN_CLICKED)
            return selectPattern(m_editor.patternRegion(), id - picPattern0);
        if (id >= optPatternRegion0 && id < optPatternRegion0 + kRegionCount && code == BN_CLICKED)
            return selectPattern(id - optPatternRegion0, m_editor.patternIndex());
        patternCommand(id, code);
    }

    void patternCommand(int id, int code)
    {
        switch (id) {
        case picEditor:
            if (code == kGlyphColumnsEdited)
                edited([this] { m_editor.storePattern(m_editorCanvas.columns()); });
            return;
        case picColumns:
            if (code == kGlyphSelectionChanged)
                EnableWindow(m_controls[cmdTakeColumns], m_columnsCanvas.selectionLength() > 0);
            return;
        case txtPattern:
            if (code == EN_KILLFOCUS && windowText(m_controls[txtPattern]) != m_editor.patternView().text) {
                if (m_editor.setPatternText(windowText(m_controls[txtPattern])))
                    changed();
                else
                    setText(lblWidthNote, m_editor.patternView().note);
            }
            return;
        default:
            break;
        }
        if (code != BN_CLICKED)
            return;
        switch (id) {
        case cmdAddColumn: return edited([this] { m_editor.addColumn(); });
        case cmdRemoveColumn: return edited([this] { m_editor.removeColumn(); });
        case cmdClearPattern: return edited([this] { m_editor.clearPattern(); });
        case cmdTakeColumns:
            return edited([this] {
                m_editor.takeColumns(m_columnsCanvas.selectionStart(), m_columnsCanvas.selectionLength());
            });
        case cmdCapture: return capture();
        case cmdCalibrate: return calibrate();
        case cmdSave: return runConfigFile(ConfigFile::Save);
        case cmdLoad: return runConfigFile(ConfigFile::Load);
        case cmdInit: return runConfigFile(ConfigFile::Defaults);
        case IDOK: return commitFocusedText(); // Enter in a text field
        case cmdClose:
        case IDCANCEL: return close();
        default: return;
        }
    }

    template <typename Edit>
    void edited(Edit edit)
    {
        edit();
        changed();
    }

    void changed()
    {
        refresh();
        if (m_context.settingsChanged)
            m_context.settingsChanged();
    }

    void askNumber(const NumberField& field)
    {
        const OptionsEditor::NumberQuestion q = m_editor.question(field);
        const double answer = m_prompter.askNumber(q.limitA, q.limitB, q.proposed, q.step, q.prompt, q.title);
        if (!m_editor.answer(field, answer))
            return;
        if (field.recognition)
            m_config.sizeBuffers();
        changed();
    }

    void commitText(const TextField& field)
    {
        const std::string typed = windowText(m_controls[idOf(textFields(), &field, kTextBase)]);
        if (typed == m_editor.text(field))
            return;
        m_editor.setText(field, typed);
        changed();
    }

    void commitFocusedText()
    {
        const HWND focus = GetFocus();
        for (const TextField& f : textFields())
            if (m_controls[idOf(textFields(), &f, kTextBase)] == focus)
                commitText(f);
        if (focus == m_controls[txtPattern])
            patternCommand(txtPattern, EN_KILLFOCUS);
    }

    void selectPattern(int region, int index)
    {
        if (region != m_editor.patternRegion())
            m_columnsCanvas.setSelection(-1, 0);
        m_editor.selectPattern(region, index);
        refreshPreviews();
    }

    void browse(const TextField& field)
    {
        std::string& value = field.value(m_editor.settings());
        wchar_t chosen[MAX_PATH] = {};
        if (field.browse == TextField::Browse::Folder) {
            const std::wstring title = wide(kSaveFolderDialogTitle);
            BROWSEINFOW info{};
            info.hwndOwner = m_window;
            info.pszDisplayName = chosen;
            info.lpszTitle = title.c_str();
            info.ulFlags = BIF_RETURNONLYFSDIRS;
            PIDLIST_ABSOLUTE list = SHBrowseForFolderW(&info);
            if (!list)
                return;
            const bool ok = SHGetPathFromIDListW(list, chosen);
            CoTaskMemFree(list);
            if (!ok)
                return;
        } else {
            const std::wstring current = wide(value);
            wcsncpy(chosen, current.c_str(), MAX_PATH - 1);
            const std::wstring filter = wide(kAllFilesName) + L" (*.*)" + L'\0' + L"*.*" + L'\0' +
                                        wide(kApplicationsName) + L" (*.exe;*.bat;*.cmd;*.lnk)" + L'\0' +
                                        L"*.exe;*.bat;*.cmd;*.lnk" + L'\0';
            const std::wstring title = wide(kStartUpDialogTitle);
            OPENFILENAMEW open{};
            open.lStructSize = sizeof open;
            open.hwndOwner = m_window;
            open.lpstrFilter = filter.c_str();
            open.lpstrFile = chosen;
            open.nMaxFile = MAX_PATH;
            open.lpstrTitle = title.c_str();
            open.Flags = OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
            if (!GetOpenFileNameW(&open))
                return;
        }
        m_editor.setText(field, platform::win32::utf8(chosen));
        changed();
    }

    void capture()
    {
        // No reading may replace the pixels meanwhile; put back however this ends.
        const HeldFlag holdCycles(m_context.cycleSkip);
        const HWND button = m_controls[cmdCapture];
        EnableWindow(button, FALSE);
        setText(lblCaptureStatus, OptionsEditor::beginCapture(m_config));
        m_context.waiter->WaitMs(10000); // events flow; the window stays until this returns
        setText(lblCaptureStatus, m_editor.capturePattern(*m_context.screen, *m_context.clock, m_config));
        EnableWindow(button, TRUE);
        refresh();
    }

    void calibrate()
    {
        const CalibrationContext calibration{&m_editor.settings(), m_editor.capture(), m_context.screen,
                                             m_context.waiter, m_config.log()};
        if (!ShowFormCalibrate(m_window, calibration))
            return;
        m_config.sizeBuffers();
        m_editor.refresh();
        changed();
    }

    void runConfigFile(int mode)
    {
        commitFocusedText();
        const std::optional<std::string> message = m_editor.runConfigFile(m_config, mode);
        changed();
        if (message)
            m_prompter.message(*message, std::string(kOptionsTitle));
    }

    void close()
    {
        commitFocusedText();
        if (m_editor.hasUnsavedEdits() &&
            m_prompter.askYesNo(OptionsEditor::unsavedQuestion(), std::string(kOptionsTitle)))
            runConfigFile(ConfigFile::Save);
        if (const std::optional<std::string> languageChanged = m_editor.apply()) {
            m_prompter.message(*languageChanged, std::string(kOptionsTitle));
            if (m_context.settingsChanged)
                m_context.settingsChanged();
        }
        m_done = true;
    }

    OptionsContext m_context;
    ConfigFile& m_config;
    Prompter& m_prompter;
    OptionsEditor m_editor;
    HWND m_window = nullptr;
    HWND m_tabs = nullptr;
    std::array<HWND, kOptionTabCount> m_pages{};
    std::array<PageScroller, kOptionTabCount> m_scrollers;
    std::array<GlyphCanvas, kRegionCount> m_binary;
    std::array<GlyphCanvas, kPatternCount> m_tiles;
    GlyphCanvas m_editorCanvas{GlyphCanvas::Mode::Edit};
    GlyphCanvas m_columnsCanvas{GlyphCanvas::Mode::Select};
    bool m_done = false;
};

} // namespace

int optionControlId(std::string_view name)
{
    return controlIdIn(controlIds(), name);
}

void ShowFormOption(HWND owner, const OptionsContext& context)
{
    if (!context.config)
        return;
    FormOptionWindow window(context);
    window.run(owner);
}

} // namespace tvx::win32ui
