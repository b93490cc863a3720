#include "FormInputCheck.h"

#include "DialogSupport.h"
#include "Win32Prompter.h"

#include "ports/Prompter.h"

#include <commctrl.h>

namespace tvx::win32ui {
namespace {

constexpr int kClientWidth = 380;
constexpr int kClientHeight = 142;
constexpr UINT_PTR kInputSubclass = 1;

} // namespace

FormInputCheck::~FormInputCheck()
{
    if (m_dialog)
        DestroyWindow(m_dialog);
}

double FormInputCheck::InputCheck(HWND owner, const std::string& limitA, const std::string& limitB, double proposed,
                                  const std::string& step, const std::string& prompt, const std::string& title)
{
    if (m_shown)
        return NumberInput::kCancelled; // one question at a time
    m_input.open(limitA, limitB, proposed, step, prompt, title);
    create(owner);
    if (!m_dialog)
        return NumberInput::kCancelled;
    show();
    m_shown = true;
    runModal(m_dialog, owner, [this] { return m_input.done(); },
             [this](const MSG& message) {
                 // Enter is the model's: it moves to 決定 from the field, confirms on 決定.
                 if (message.message != WM_KEYDOWN || message.wParam != VK_RETURN)
                     return false;
                 if (message.hwnd != m_dialog && !IsChild(m_dialog, message.hwnd))
                     return false;
                 return onEnterKey();
             });
    m_shown = false;
    DestroyWindow(m_dialog);
    m_dialog = nullptr;
    return m_input.result();
}

void FormInputCheck::create(HWND owner)
{
    if (m_dialog)
        DestroyWindow(m_dialog);
    m_dialog = createDialog(owner, &FormInputCheck::dialogProc, reinterpret_cast<LPARAM>(this),
                            WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME);
    if (m_dialog)
        placeOver(m_dialog, owner, kClientWidth, kClientHeight);
}

void FormInputCheck::build()
{
    const HWND d = m_dialog;
    addControl(d, L"STATIC", tr(NumberInput::kGuide), SS_LEFT | SS_NOPREFIX, lblmsg, 12, 10, 356, 36);
    const HWND edit = addControl(d, L"EDIT", "", WS_BORDER | WS_TABSTOP | ES_RIGHT | ES_AUTOHSCROLL, txtInput, 12, 54,
                                 160, 26, fixedFont());
    SetWindowSubclass(edit, &FormInputCheck::inputProc, kInputSubclass, reinterpret_cast<DWORD_PTR>(this));
    addControl(d, L"BUTTON", "", BS_OWNERDRAW, cmdInc, 176, 54, 26, 13);
    addControl(d, L"BUTTON", "", BS_OWNERDRAW, cmdDec, 176, 67, 26, 13);
    addControl(d, L"STATIC", tr(NumberInput::kMaxCaption), SS_RIGHT, lblmax, 214, 52, 48, 16);
    addControl(d, L"STATIC", "", SS_LEFT, lblmaxv, 264, 52, 104, 16, fixedFont());
    addControl(d, L"STATIC", tr(NumberInput::kMinCaption), SS_RIGHT, lblmin, 214, 68, 48, 16);
    addControl(d, L"STATIC", "", SS_LEFT, lblminV, 264, 68, 104, 16, fixedFont());
    addControl(d, L"BUTTON", tr(NumberInput::kEnterCaption), BS_PUSHBUTTON | WS_TABSTOP, cmdEnter, 184, 102, 90, 28);
    addControl(d, L"BUTTON", tr(NumberInput::kCancelCaption), BS_PUSHBUTTON | WS_TABSTOP, cmdCancel, 278, 102, 90, 28);
}

void FormInputCheck::show()
{
    win32ui::setText(m_dialog, m_input.title());
    win32ui::setText(item(lblmsg), m_input.prompt());
    win32ui::setText(item(lblmaxv), m_input.upperText());
    win32ui::setText(item(lblminV), m_input.lowerText());
    win32ui::setText(item(txtInput), m_input.text());
    focusInput();
}

void FormInputCheck::focusInput()
{
    SendMessageW(m_dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(item(txtInput)), TRUE);
    SendMessageW(item(txtInput), EM_SETSEL, 0, -1);
}

NumberInput::Focus FormInputCheck::focus() const
{
    const HWND focused = GetFocus();
    if (focused == item(cmdEnter))
        return NumberInput::Focus::EnterButton;
    if (focused == item(cmdCancel))
        return NumberInput::Focus::CancelButton;
    if (focused == item(cmdInc) || focused == item(cmdDec))
        return NumberInput::Focus::StepButton;
    return NumberInput::Focus::Input;
}

bool FormInputCheck::onEnterKey()
{
    switch (NumberInput::enterAction(focus())) {
    case NumberInput::EnterAction::FocusEnter:
        SendMessageW(m_dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(item(cmdEnter)), TRUE);
        break;
    case NumberInput::EnterAction::Confirm:
        confirm();
        break;
    case NumberInput::EnterAction::Cancel:
        m_input.cancel();
        break;
    }
    return true;
}

void FormInputCheck::command(int id)
{
    switch (id) {
    case cmdInc:
    case cmdDec:
        step(id == cmdInc);
        break;
    case cmdEnter:
        confirm();
        break;
    case IDOK: // Enter reaching the dialog manager some other way
        onEnterKey();
        break;
    case cmdCancel:
    case IDCANCEL: // Escape
        m_input.cancel();
        break;
    default:
        break;
    }
}

void FormInputCheck::step(bool up)
{
    m_input.setText(windowText(item(txtInput)));
    if (const auto warning = up ? m_input.increment() : m_input.decrement())
        warn(*warning);
    else
        win32ui::setText(item(txtInput), m_input.text());
}

void FormInputCheck::confirm()
{
    m_input.setText(windowText(item(txtInput)));
    const auto warning = m_input.confirm();
    if (!warning)
        return;
    warn(*warning);
    if (warning->focusInput)
        focusInput();
}

void FormInputCheck::warn(const NumberInput::Warning& warning)
{
    if (m_messages)
        m_messages->message(warning.text, warning.title);
    else
        showMessageBox(m_dialog, warning.text, warning.title);
}

INT_PTR CALLBACK FormInputCheck::dialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        auto* self = reinterpret_cast<FormInputCheck*>(lParam);
        self->m_dialog = dialog;
        self->build();
        return FALSE; // the focus is set when the question is shown
    }
    auto* self = reinterpret_cast<FormInputCheck*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (!self)
        return FALSE;
    try {
        switch (message) {
        case WM_COMMAND:
            if (HIWORD(wParam) == BN_CLICKED)
                self->command(LOWORD(wParam));
            return TRUE;
        case WM_CLOSE:
            self->m_input.cancel();
            return TRUE;
        case WM_DRAWITEM: {
            const auto* draw = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
            UINT state = draw->CtlID == cmdInc ? DFCS_SCROLLUP : DFCS_SCROLLDOWN;
            if (draw->itemState & ODS_SELECTED)
                state |= DFCS_PUSHED;
            RECT area = draw->rcItem;
            DrawFrameControl(draw->hDC, &area, DFC_SCROLL, state);
            return TRUE;
        }
        default:
            return FALSE;
        }
    } catch (...) {
        self->m_input.cancel(); // never leave the player in a dialog that cannot answer
        return TRUE;
    }
}

LRESULT CALLBACK FormInputCheck::inputProc(HWND edit, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                           DWORD_PTR data)
{
    auto* self = reinterpret_cast<FormInputCheck*>(data);
    switch (message) {
    case WM_CHAR:
        switch (NumberInput::filterKey(static_cast<char32_t>(wParam))) {
        case NumberInput::Key::Pass:
            break;
        case NumberInput::Key::Drop:
            return 0;
        case NumberInput::Key::FocusEnter:
            self->onEnterKey();
            return 0;
        }
        break;
    case WM_SETFOCUS: {
        // After a click has placed the caret, so the whole text ends up selected.
        const LRESULT result = DefSubclassProc(edit, message, wParam, lParam);
        PostMessageW(edit, EM_SETSEL, 0, -1);
        return result;
    }
    case WM_NCDESTROY:
        RemoveWindowSubclass(edit, &FormInputCheck::inputProc, kInputSubclass);
        break;
    default:
        break;
    }
    return DefSubclassProc(edit, message, wParam, lParam);
}

} // namespace tvx::win32ui
