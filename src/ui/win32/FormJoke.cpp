#include "FormJoke.h"

#include "DialogSupport.h"

#include <algorithm>

namespace tvx::win32ui {
namespace {

constexpr int kMargin = 16;
constexpr int kGap = 12;
constexpr int kButtonHeight = 28;

// Device pixels of this screen back to pixels at 96 dpi, rounded up so nothing is lost.
int logical(int device)
{
    const int dpi = scaled(96);
    return (device * 96 + dpi - 1) / dpi;
}

// The size a text takes in the dialog font, wrapped at `width` (pixels at 96 dpi).
SIZE measured(HDC dc, std::string_view text, int width)
{
    const std::wstring body = wide(text);
    RECT bounds{0, 0, scaled(width), 0};
    DrawTextW(dc, body.c_str(), static_cast<int>(body.size()), &bounds, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
    return SIZE{logical(bounds.right), logical(bounds.bottom)};
}

} // namespace

FormJoke::~FormJoke()
{
    if (m_dialog)
        DestroyWindow(m_dialog);
}

void FormJoke::run(HWND owner)
{
    m_popup.open();
    m_failed = false;
    m_dialog = createDialog(owner, &FormJoke::dialogProc, reinterpret_cast<LPARAM>(this),
                            WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME);
    if (!m_dialog)
        return;
    placeOver(m_dialog, owner, m_client.cx, m_client.cy);
    draw();
    SendMessageW(m_dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(m_dialog, cmdClose)), TRUE);
    runModal(m_dialog, owner, [this] { return m_failed || !m_popup.isOpen(); });
    DestroyWindow(m_dialog);
    m_dialog = nullptr;
}

void FormJoke::build()
{
    // One size for the whole script: room for its tallest message and widest button.
    const HDC dc = GetDC(m_dialog);
    const HGDIOBJ old = SelectObject(dc, dialogFont());
    int messageHeight = 0;
    int buttonWidth = 96;
    for (const JokeLine& japanese : JokePopup::script()) {
        const JokeLine line = japanese.shown();
        messageHeight = std::max<int>(messageHeight, measured(dc, line.message, JokePopup::kMessageWidth).cy);
        buttonWidth = std::max<int>(buttonWidth, measured(dc, line.button, JokePopup::kMessageWidth).cx + 24);
    }
    SelectObject(dc, old);
    ReleaseDC(m_dialog, dc);

    const int buttonTop = kMargin + messageHeight + kGap;
    addControl(m_dialog, L"STATIC", "", SS_LEFT | SS_NOPREFIX, lblMessage, kMargin, kMargin, JokePopup::kMessageWidth,
               messageHeight);
    addControl(m_dialog, L"BUTTON", "", BS_DEFPUSHBUTTON | WS_TABSTOP, cmdClose,
               kMargin + JokePopup::kMessageWidth - buttonWidth, buttonTop, buttonWidth, kButtonHeight);
    SendMessageW(m_dialog, DM_SETDEFID, cmdClose, 0);
    m_client = SIZE{JokePopup::kMessageWidth + 2 * kMargin, buttonTop + kButtonHeight + kGap};
}

void FormJoke::draw()
{
    const JokeLine line = m_popup.current().shown();
    setText(m_dialog, line.caption);
    setText(GetDlgItem(m_dialog, lblMessage), line.message);
    setText(GetDlgItem(m_dialog, cmdClose), line.button);
}

void FormJoke::attempt()
{
    if (!m_popup.attemptClose())
        draw();
}

INT_PTR CALLBACK FormJoke::dialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG)
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
    auto* self = reinterpret_cast<FormJoke*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (!self)
        return FALSE;
    try {
        switch (message) {
        case WM_INITDIALOG:
            self->m_dialog = dialog;
            self->build();
            return FALSE; // the focus goes to the button once the first line is drawn
        case WM_COMMAND:
            // The button, Enter (IDOK) and Escape (IDCANCEL) are all attempts to close.
            if (HIWORD(wParam) == BN_CLICKED)
                self->attempt();
            return TRUE;
        case WM_CLOSE: // the close box and Alt+F4
            self->attempt();
            return TRUE;
        default:
            return FALSE;
        }
    } catch (...) {
        self->m_failed = true; // a popup that cannot show its next line lets go
        return TRUE;
    }
}

} // namespace tvx::win32ui
