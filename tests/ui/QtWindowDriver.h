#pragma once

#include "support/WindowDriver.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

#include <functional>

namespace tvx::test {

// A Qt window, found afresh for every call, and its children by object name.
class QtWindowDriver final : public WindowDriver {
public:
    explicit QtWindowDriver(std::function<QWidget*()> window) : m_window(std::move(window)) {}

    bool isOpen() override { return m_window() != nullptr && m_window()->isVisible(); }
    std::string title() override { return m_window()->windowTitle().toStdString(); }
    bool has(const std::string& name) override { return m_window() && find(name); }
    std::string text(const std::string& name) override
    {
        QWidget* widget = control(name);
        if (const auto* label = qobject_cast<QLabel*>(widget))
            return label->text().toStdString();
        if (const auto* button = qobject_cast<QAbstractButton*>(widget))
            return button->text().toStdString();
        if (const auto* edit = qobject_cast<QLineEdit*>(widget))
            return edit->text().toStdString();
        if (const auto* combo = qobject_cast<QComboBox*>(widget))
            return combo->currentText().toStdString();
        return {};
    }
    bool enabled(const std::string& name) override { return control(name) && control(name)->isEnabled(); }
    // The window's own focus: offscreen, a window may stay inactive after a message box.
    bool focused(const std::string& name) override
    {
        return m_window() && m_window()->focusWidget() && m_window()->focusWidget() == find(name);
    }
    void focus(const std::string& name) override { control(name)->setFocus(); }
    void click(const std::string& name) override
    {
        QMetaObject::invokeMethod(qobject_cast<QAbstractButton*>(control(name)), "click", Qt::QueuedConnection);
    }
    void type(const std::string& name, const std::string& text) override
    {
        QTest::keyClicks(control(name), QString::fromStdString(text));
    }
    void setText(const std::string& name, const std::string& text) override
    {
        qobject_cast<QLineEdit*>(control(name))->setText(QString::fromStdString(text));
    }
    void press(Key key) override
    {
        QWidget* target = m_window()->focusWidget();
        const Qt::Key code = key == Key::Enter ? Qt::Key_Return : Qt::Key_Escape;
        QCoreApplication::postEvent(target, new QKeyEvent(QEvent::KeyPress, code, Qt::NoModifier));
        QCoreApplication::postEvent(target, new QKeyEvent(QEvent::KeyRelease, code, Qt::NoModifier));
    }
    Box frame() override
    {
        const QRect r = m_window()->frameGeometry();
        return {r.x(), r.y(), r.width(), r.height()};
    }
    void close() override { QMetaObject::invokeMethod(m_window(), "close", Qt::QueuedConnection); }

    QWidget* control(const std::string& name)
    {
        QWidget* found = m_window() ? find(name) : nullptr;
        EXPECT_NE(found, nullptr) << name;
        return found;
    }

private:
    QWidget* find(const std::string& name) { return m_window()->findChild<QWidget*>(QString::fromStdString(name)); }

    std::function<QWidget*()> m_window;
};

// Runs `modal` while the steps play from a timer in its loop.
void playWhile(std::deque<PlayerStep> steps, const std::function<void()>& modal);

} // namespace tvx::test
