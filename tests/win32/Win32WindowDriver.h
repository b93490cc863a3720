#pragma once

#include "support/WindowDriver.h"

#include <windows.h>

#include <functional>

namespace tvx::test {

// A Win32 window, found afresh for every call, and its controls by the identifiers their
// names map to.
class Win32WindowDriver final : public WindowDriver {
public:
    Win32WindowDriver(std::function<HWND()> window, std::function<int(const std::string&)> idOf)
        : m_window(std::move(window)), m_idOf(std::move(idOf))
    {
    }

    bool isOpen() override;
    std::string title() override;
    bool has(const std::string& name) override;
    std::string text(const std::string& name) override;
    bool enabled(const std::string& name) override;
    bool focused(const std::string& name) override;
    void focus(const std::string& name) override;
    void click(const std::string& name) override;
    void type(const std::string& name, const std::string& text) override;
    void setText(const std::string& name, const std::string& text) override;
    void press(Key key) override;
    Box frame() override;
    void close() override;

    HWND control(const std::string& name);

private:
    std::function<HWND()> m_window;
    std::function<int(const std::string&)> m_idOf;
};

// The visible message box with this title, answered: its text, lines joined by "\n".
std::optional<std::string> answerWin32Box(const std::string& title, PromptHost::Button button, HWND except = nullptr);

} // namespace tvx::test
