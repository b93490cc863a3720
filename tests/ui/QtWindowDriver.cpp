// The Qt front end behind the shared window scenarios of tests/windows.
#include "QtWindowDriver.h"

#include "FormInputCheck.h"
#include "FormMain.h"
#include "GraphFrame.h"
#include "QtPrompter.h"

#include "meter/Meter.h"
#include "shell/DebugLog.h"
#include "support/FakeMachine.h"

#include <QAbstractButton>
#include <QAction>
#include <QPlainTextEdit>
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace tvx::test {

QWidget* QtWindowDriver::control(const std::string& name)
{
    QWidget* window = m_window();
    QWidget* found = window ? window->findChild<QWidget*>(QString::fromStdString(name)) : nullptr;
    EXPECT_NE(found, nullptr) << name;
    return found;
}

bool QtWindowDriver::isOpen()
{
    const QWidget* window = m_window();
    return window != nullptr && window->isVisible();
}

std::string QtWindowDriver::title()
{
    return m_window()->windowTitle().toStdString();
}

bool QtWindowDriver::has(const std::string& name)
{
    const QWidget* window = m_window();
    return window != nullptr && window->findChild<QWidget*>(QString::fromStdString(name)) != nullptr;
}

std::string QtWindowDriver::text(const std::string& name)
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
    return widget ? widget->windowTitle().toStdString() : std::string();
}

bool QtWindowDriver::enabled(const std::string& name)
{
    const QWidget* widget = control(name);
    return widget != nullptr && widget->isEnabled();
}

bool QtWindowDriver::focused(const std::string& name)
{
    // The window's own focus: offscreen, a window may stay inactive after a message box.
    const QWidget* window = m_window();
    return window != nullptr && window->focusWidget() != nullptr &&
           window->focusWidget() == window->findChild<QWidget*>(QString::fromStdString(name));
}

void QtWindowDriver::focus(const std::string& name)
{
    control(name)->setFocus();
}

void QtWindowDriver::click(const std::string& name)
{
    QMetaObject::invokeMethod(qobject_cast<QAbstractButton*>(control(name)), "click", Qt::QueuedConnection);
}

void QtWindowDriver::type(const std::string& name, const std::string& text)
{
    QTest::keyClicks(control(name), QString::fromStdString(text));
}

void QtWindowDriver::setText(const std::string& name, const std::string& text)
{
    qobject_cast<QLineEdit*>(control(name))->setText(QString::fromStdString(text));
}

void QtWindowDriver::press(Key key)
{
    QWidget* target = m_window()->focusWidget();
    const Qt::Key code = key == Key::Enter ? Qt::Key_Return : Qt::Key_Escape;
    QCoreApplication::postEvent(target, new QKeyEvent(QEvent::KeyPress, code, Qt::NoModifier));
    QCoreApplication::postEvent(target, new QKeyEvent(QEvent::KeyRelease, code, Qt::NoModifier));
}

WindowDriver::Box QtWindowDriver::frame()
{
    const QRect r = m_window()->frameGeometry();
    return {r.x(), r.y(), r.width(), r.height()};
}

void QtWindowDriver::close()
{
    QMetaObject::invokeMethod(m_window(), "close", Qt::QueuedConnection);
}

void playWhile(std::deque<PlayerStep> steps, const std::function<void()>& modal)
{
    QElapsedTimer clock;
    clock.start();
    bool running = false;
    bool timedOut = false;
    QTimer timer;
    timer.callOnTimeout([&] {
        if (running || steps.empty())
            return;
        running = true; // a step may open a nested loop of its own
        if (steps.front()())
            steps.pop_front();
        else if (clock.elapsed() > 10000) {
            timedOut = true;
            if (QWidget* modalWindow = QApplication::activeModalWidget())
                modalWindow->close();
        }
        running = false;
    });
    timer.start(20);
    modal();
    EXPECT_TRUE(steps.empty()) << "the window closed before the player was done";
    EXPECT_FALSE(timedOut);
}

std::optional<std::string> answerQtBox(const std::string& title, PromptHost::Button button)
{
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (box == nullptr || box->windowTitle().toStdString() != title)
        return std::nullopt;
    const QMessageBox::StandardButton which[] = {QMessageBox::Ok, QMessageBox::Cancel, QMessageBox::Yes,
                                                 QMessageBox::No};
    QAbstractButton* pressed = box->button(which[static_cast<int>(button)]);
    if (pressed == nullptr)
        return std::nullopt;
    QMetaObject::invokeMethod(pressed, "click", Qt::QueuedConnection);
    return box->text().toStdString();
}

namespace {

class QtPromptHost final : public PromptHost {
public:
    QtPromptHost()
    {
        m_owner.setGeometry(60, 40, 420, 300);
        m_owner.show();
    }

    Prompter& prompter() override { return m_prompter; }

    void play(std::deque<PlayerStep> steps, const std::function<void()>& question) override
    {
        QApplication::setActiveWindow(&m_owner); // the window that asks
        playWhile(std::move(steps), question);
    }

    WindowDriver& numberDialog() override { return m_dialog; }

    WindowDriver::Box owner() override
    {
        const QRect r = m_owner.frameGeometry();
        return {r.x(), r.y(), r.width(), r.height()};
    }

    std::optional<std::string> answerBox(const std::string& title, Button button) override
    {
        return answerQtBox(title, button);
    }

private:
    QWidget m_owner;
    ui::QtPrompter m_prompter{&m_owner};
    QtWindowDriver m_dialog{[this]() -> QWidget* { return m_owner.findChild<ui::FormInputCheck*>(); }};
};

class QtMainWindowHost final : public MainWindowHost {
public:
    QtMainWindowHost(Settings& settings, DebugLog& log, FakeMachine& machine)
        : m_window(programTitle("MapleStory"), log, log.path().parent_path()),
          m_ports{machine.clock, machine, machine, machine, machine, machine, machine, m_window},
          m_meter(settings, m_ports, log)
    {
        m_window.attach(m_meter);
    }

    Meter& meter() override { return m_meter; }

    void load() override
    {
        m_window.FormMain_Load();
        m_window.show();
        m_window.resize(900, 560);
        QTest::qWait(20);
    }

    std::string title() override { return m_window.windowTitle().toStdString(); }

    std::string text(const std::string& control) override
    {
        QWidget* widget = m_window.findChild<QWidget*>(QString::fromStdString(control));
        if (const auto* label = qobject_cast<QLabel*>(widget))
            return label->text().toStdString();
        if (const auto* button = qobject_cast<QAbstractButton*>(widget))
            return button->text().toStdString();
        ADD_FAILURE() << "no label or button " << control;
        return {};
    }

    std::string menuText(const std::string& item) override { return action(item)->text().toStdString(); }
    bool menuEnabled(const std::string& item) override { return action(item)->isEnabled(); }
    void choose(const std::string& item) override { action(item)->trigger(); }
    std::string logBox() override { return m_window.txtLog()->toPlainText().toStdString(); }

    void clickGraphLabel(GraphLabel label) override
    {
        QTest::mouseClick(m_window.findChild<ui::GraphFrame*>()->label(label), Qt::LeftButton);
    }

    void close() override { m_window.close(); }

private:
    QAction* action(const std::string& item)
    {
        QAction* found = m_window.action(item.c_str());
        EXPECT_NE(found, nullptr) << item;
        return found;
    }

    ui::FormMain m_window;
    MeterPorts m_ports;
    Meter m_meter;
};

} // namespace

std::unique_ptr<MainWindowHost> makeMainWindowHost(Settings& settings, DebugLog& log, FakeMachine& machine)
{
    return std::make_unique<QtMainWindowHost>(settings, log, machine);
}

std::unique_ptr<PromptHost> makePromptHost()
{
    return std::make_unique<QtPromptHost>();
}

} // namespace tvx::test
