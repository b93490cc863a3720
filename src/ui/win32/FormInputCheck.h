#pragma once

#include "view/NumberInput.h"

#include <windows.h>

#include <string>

namespace tvx {
class Prompter;
}

namespace tvx::win32ui {

// The bounded number input as a Win32 dialog over the window that asked. It draws the
// core's NumberInput and forwards keys and clicks to it; cancel and close answer 19999.
class FormInputCheck {
public:
    // Control identifiers, for the dialog manager and the tests.
    enum Control : int {
        txtInput = 1001,
        cmdInc,
        cmdDec,
        cmdEnter,
        cmdCancel,
        lblmsg,
        lblmax,
        lblmaxv,
        lblmin,
        lblminV,
    };

    // messages receives the dialog's own warnings; null shows them in message boxes.
    explicit FormInputCheck(Prompter* messages = nullptr) : m_messages(messages) {}
    ~FormInputCheck();
    FormInputCheck(const FormInputCheck&) = delete;
    FormInputCheck& operator=(const FormInputCheck&) = delete;

    // Blocks until the player confirms or cancels; returns the value or 19999.
    double InputCheck(HWND owner, const std::string& limitA, const std::string& limitB, double proposed,
                      const std::string& step, const std::string& prompt, const std::string& title);

    // The dialog while a question is open (null otherwise).
    HWND window() const { return m_shown ? m_dialog : nullptr; }

private:
    static INT_PTR CALLBACK dialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK inputProc(HWND edit, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR self);
    void create(HWND owner);
    void build();
    void show();
    bool onEnterKey();
    void command(int id);
    void step(bool up);
    void confirm();
    void warn(const NumberInput::Warning& warning);
    void focusInput();
    NumberInput::Focus focus() const;
    HWND item(int id) const { return GetDlgItem(m_dialog, id); }

    Prompter* m_messages;
    NumberInput m_input;
    HWND m_dialog = nullptr;
    bool m_shown = false;
};

} // namespace tvx::win32ui
