#pragma once

#include "support/WindowDriver.h"

#include <QWidget>

#include <functional>

namespace tvx::test {

// A Qt window, found afresh for every call, and its children by object name.
class QtWindowDriver final : public WindowDriver {
public:
    explicit QtWindowDriver(std::function<QWidget*()> window) : m_window(std::move(window)) {}

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

    QWidget* control(const std::string& name);

private:
    std::function<QWidget*()> m_window;
};

// Runs `modal` while the steps play from a timer in its loop.
void playWhile(std::deque<PlayerStep> steps, const std::function<void()>& modal);

// The active message box with this title, answered: its text.
std::optional<std::string> answerQtBox(const std::string& title, PromptHost::Button button);

} // namespace tvx::test
