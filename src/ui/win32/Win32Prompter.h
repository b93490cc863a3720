#pragma once

#include "ports/Prompter.h"

#include <windows.h>

namespace tvx::win32ui {

// The program's questions and messages as message boxes over the owner window; the
// bounded number input is FormInputCheck.
class Win32Prompter final : public Prompter {
public:
    explicit Win32Prompter(HWND owner = nullptr) : m_owner(owner) {}
    void setOwner(HWND owner) { m_owner = owner; }

    void message(const std::string& text, const std::string& title) override;
    bool askYesNo(const std::string& text, const std::string& title) override;
    bool askOkCancel(const std::string& text, const std::string& title) override;
    double askNumber(const std::string& limitA, const std::string& limitB, double proposed, const std::string& step,
                     const std::string& prompt, const std::string& title) override;

private:
    HWND m_owner;
};

} // namespace tvx::win32ui
