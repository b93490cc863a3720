#include "HistoryWindow.h"

#include "DialogSupport.h"

#include "ports/Prompter.h"
#include "view/HistoryView.h"

#include <commctrl.h>

#include <algorithm>
#include <exception>

namespace tvx::win32ui {
namespace {

constexpr wchar_t kClass[] = L"TallivexHistory";
// Room for the sessions' eleven columns at their widest usual figures.
constexpr int kClientWidth = 1000;
constexpr int kClientHeight = 440;
constexpr int kMargin = 8;
constexpr int kButtonHeight = 26;
// Room beside a column's text for the cell's and the header's margins.
constexpr int kCellPadding = 18;

} // namespace

std::optional<std::filesystem::path> chooseExportFile(HWND owner)
{
    wchar_t chosen[MAX_PATH] = {};
    const std::wstring proposed = wide(kHistoryExportName);
    proposed.copy(chosen, MAX_PATH - 1);
    const std::wstring filter = std::wstring(L"CSV (*.csv)") + L'\0' + L"*.csv" + L'\0' +
                                wide(tr("すべてのファイル (*.*)")) + L'\0' + L"*.*" + L'\0';
    OPENFILENAMEW save{};
    save.lStructSize = sizeof save;
    save.hwndOwner = owner;
    save.lpstrFilter = filter.c_str();
    save.lpstrFile = chosen;
    save.nMaxFile = MAX_PATH;
    save.lpstrDefExt = L"csv";
    save.Flags = OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_PATHMUSTEXIST;
    if (!GetSaveFileNameW(&save))
        return std::nullopt;
    return std::filesystem::path(chosen);
}

HistoryWindow::~HistoryWindow()
{
    if (m_window != nullptr)
        DestroyWindow(m_window);
}

void HistoryWindow::create(HWND owner)
{
    registerWindowClass(kClass, &ownedWindowProc<HistoryWindow>, GetSysColorBrush(COLOR_BTNFACE),
                        LoadIconW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(1)));
    m_window = CreateWindowExW(0, kClass, wide(tr(kHistoryTitle)).c_str(), WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN,
                               CW_USEDEFAULT, CW_USEDEFAULT, 0, 0, owner, nullptr, GetModuleHandleW(nullptr), this);
    if (m_window == nullptr)
        return;
    m_dpi = Dpi::of(m_window);
    m_font = createFont(12, m_dpi);
    HFONT font = m_font.get();
    m_tabs = createControl(m_window, WC_TABCONTROLW, "", WS_CLIPSIBLINGS | WS_TABSTOP, kTabPages, font);
    for (std::size_t page = 0; page < kHistoryPages.size(); ++page) {
        std::wstring caption = wide(tr(kHistoryPages[page]));
        TCITEMW item{};
        item.mask = TCIF_TEXT;
        item.pszText = caption.data();
        SendMessageW(m_tabs, TCM_INSERTITEMW, page, reinterpret_cast<LPARAM>(&item));
        m_lists[page] = createControl(m_window, WC_LISTVIEWW, "",
                                      LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS | WS_CLIPSIBLINGS | WS_TABSTOP,
                                      kLvwPage + static_cast<int>(page), font);
        SetWindowLongPtrW(m_lists[page], GWL_EXSTYLE, GetWindowLongPtrW(m_lists[page], GWL_EXSTYLE) | WS_EX_CLIENTEDGE);
        SendMessageW(m_lists[page], LVM_SETEXTENDEDLISTVIEWSTYLE, 0,
                     LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES | LVS_EX_DOUBLEBUFFER);
    }
    // The pages stand over the tab control, which would otherwise paint over them.
    SetWindowPos(m_tabs, HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    m_cmdExport = createControl(m_window, L"BUTTON", tr(kHistoryExportCaption), BS_PUSHBUTTON | WS_TABSTOP, kCmdExport, font);
    m_cmdClose = createControl(m_window, L"BUTTON", tr(kHistoryCloseCaption), BS_PUSHBUTTON | WS_TABSTOP, kCmdClose, font);
    placeOver(m_window, owner, kClientWidth, kClientHeight);
    selectPage(0);
}

void HistoryWindow::show(HWND owner, const std::filesystem::path& historyFile, Prompter& prompter,
                         ExportChooser chooser)
{
    m_file = historyFile;
    m_prompter = &prompter;
    m_chooser = std::move(chooser);
    if (m_window == nullptr)
        create(owner);
    if (m_window == nullptr)
        return;
    m_data = openHistoryWindow(historyFile);
    fill();
    layout();
    ShowWindow(m_window, SW_SHOW);
    SetForegroundWindow(m_window);
    if (m_data.error)
        prompter.message(*m_data.error, std::string(tr(kHistoryTitle)));
}

void HistoryWindow::retranslate()
{
    if (m_window == nullptr)
        return;
    setText(m_window, tr(kHistoryTitle));
    for (std::size_t page = 0; page < kHistoryPages.size(); ++page) {
        std::wstring caption = wide(tr(kHistoryPages[page]));
        TCITEMW item{};
        item.mask = TCIF_TEXT;
        item.pszText = caption.data();
        SendMessageW(m_tabs, TCM_SETITEMW, page, reinterpret_cast<LPARAM>(&item));
    }
    setText(m_cmdExport, tr(kHistoryExportCaption));
    setText(m_cmdClose, tr(kHistoryCloseCaption));
    // The rows as read last time, under headers in the new language.
    m_data.tables = {historySessions(m_data.rows), historyDays(m_data.rows), historyWeeks(m_data.rows)};
    fill();
}

void HistoryWindow::fill()
{
    for (std::size_t page = 0; page < m_lists.size(); ++page) {
        const HWND list = m_lists[page];
        const HistoryTable& table = m_data.tables[page];
        SendMessageW(list, WM_SETREDRAW, FALSE, 0);
        SendMessageW(list, LVM_DELETEALLITEMS, 0, 0);
        while (SendMessageW(list, LVM_DELETECOLUMN, 0, 0) != FALSE) {
        }
        for (std::size_t column = 0; column < table.headers.size(); ++column) {
            std::wstring header = wide(table.headers[column]);
            LVCOLUMNW item{};
            item.mask = LVCF_TEXT | LVCF_FMT;
            item.fmt = column < kHistoryDateColumns[page] ? LVCFMT_LEFT : LVCFMT_RIGHT;
            item.pszText = header.data();
            SendMessageW(list, LVM_INSERTCOLUMNW, column, reinterpret_cast<LPARAM>(&item));
        }
        for (std::size_t row = 0; row < table.rows.size(); ++row) {
            for (std::size_t column = 0; column < table.rows[row].size(); ++column) {
                std::wstring cell = wide(table.rows[row][column]);
                LVITEMW item{};
                item.mask = LVIF_TEXT;
                item.iItem = static_cast<int>(row);
                item.iSubItem = static_cast<int>(column);
                item.pszText = cell.data();
                SendMessageW(list, column == 0 ? LVM_INSERTITEMW : LVM_SETITEMTEXTW, row, reinterpret_cast<LPARAM>(&item));
            }
        }
        // Every column as wide as its widest text or its header, whichever is wider. Measured
        // here: the list view's own sizing to the header cuts Japanese headers under Wine.
        for (std::size_t column = 0; column < table.headers.size(); ++column) {
            const auto widthOf = [list](const std::string& text) {
                const std::wstring line = wide(text);
                return static_cast<int>(SendMessageW(list, LVM_GETSTRINGWIDTHW, 0, reinterpret_cast<LPARAM>(line.c_str())));
            };
            int width = widthOf(table.headers[column]);
            for (const auto& row : table.rows)
                width = std::max(width, widthOf(row[column]));
            SendMessageW(list, LVM_SETCOLUMNWIDTH, column, width + m_dpi(kCellPadding));
        }
        SendMessageW(list, WM_SETREDRAW, TRUE, 0);
        InvalidateRect(list, nullptr, TRUE);
    }
    // Nothing was read: there is nothing to export either.
    EnableWindow(m_cmdExport, !m_data.error);
}

void HistoryWindow::layout()
{
    RECT client{};
    GetClientRect(m_window, &client);
    const int margin = m_dpi(kMargin);
    const int buttonHeight = m_dpi(kButtonHeight);
    const int buttonTop = client.bottom - margin - buttonHeight;
    const int closeWidth = m_dpi(96);
    const int exportWidth = m_dpi(150);
    MoveWindow(m_cmdClose, client.right - margin - closeWidth, buttonTop, closeWidth, buttonHeight, TRUE);
    MoveWindow(m_cmdExport, client.right - 2 * margin - closeWidth - exportWidth, buttonTop, exportWidth, buttonHeight,
               TRUE);
    RECT page{margin, margin, client.right - margin, buttonTop - margin};
    MoveWindow(m_tabs, page.left, page.top, page.right - page.left, page.bottom - page.top, TRUE);
    SendMessageW(m_tabs, TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&page));
    for (HWND list : m_lists)
        MoveWindow(list, page.left, page.top, page.right - page.left, page.bottom - page.top, TRUE);
}

void HistoryWindow::selectPage(std::size_t page)
{
    SendMessageW(m_tabs, TCM_SETCURSEL, page, 0);
    for (std::size_t i = 0; i < m_lists.size(); ++i)
        ShowWindow(m_lists[i], i == page ? SW_SHOW : SW_HIDE);
}

void HistoryWindow::exportCsv()
{
    const std::optional<std::filesystem::path> target = m_chooser ? m_chooser(m_window) : chooseExportFile(m_window);
    if (!target)
        return;
    if (const std::optional<std::string> failure = exportHistory(m_data.rows, *target, m_file))
        m_prompter->message(*failure, std::string(tr(kHistoryTitle)));
}

LRESULT HistoryWindow::handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    // Nothing may cross the system's message dispatch.
    try {
        switch (message) {
        case WM_COMMAND:
            if (LOWORD(wParam) == kCmdExport)
                exportCsv();
            else if (LOWORD(wParam) == kCmdClose || LOWORD(wParam) == IDCANCEL)
                DestroyWindow(window);
            return 0;
        case WM_NOTIFY: {
            const auto* header = reinterpret_cast<const NMHDR*>(lParam);
            if (header->hwndFrom == m_tabs && header->code == TCN_SELCHANGE)
                selectPage(static_cast<std::size_t>(SendMessageW(m_tabs, TCM_GETCURSEL, 0, 0)));
            break;
        }
        case WM_SIZE:
            if (wParam != SIZE_MINIMIZED && m_tabs != nullptr)
                layout();
            return 0;
        case WM_GETMINMAXINFO: {
            auto* limits = reinterpret_cast<MINMAXINFO*>(lParam);
            limits->ptMinTrackSize = POINT{m_dpi(480), m_dpi(240)};
            return 0;
        }
        case WM_DESTROY:
            m_window = nullptr;
            m_tabs = nullptr;
            return 0;
        default: break;
        }
    } catch (const std::exception&) {
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

} // namespace tvx::win32ui
