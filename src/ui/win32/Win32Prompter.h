#pragma once

#include "ports/Prompter.h"

#include <windows.h>

#include <memory>
#include <string_view>

namespace tvx::win32ui {

class FormInputCheck;

// The program's questions and messages as message boxes over the window that asked (the
// active window of this thread, else the owner); the bounded number input is
// FormInputCheck, kept and reused for every number.
class Win32Prompter final : public Prompter {
public:
    explicit Win32Prompter(HWND owner = nullptr);
    ~Win32Prompter() override;
    void setOwner(HWND owner) { m_owner = owner; }

    void message(const std::string& text, const std::string& title) override;
    bool askYesNo(const std::string& text, const std::string& title) override;
    bool askOkCancel(const std::string& text, const std::string& title) override;
    double askNumber(const std::string& limitA, const std::string& limitB, double proposed, const std::string& step,
                     const std::string& prompt, const std::string& title) override;

private:
    HWND asker() const;

    HWND m_owner;
    std::unique_ptr<FormInputCheck> m_input;
};

// An OK message box; texts of several lines are joined by CR LF.
void showMessageBox(HWND owner, std::string_view text, std::string_view title);

} // namespace tvx::win32ui
