// The Qt front end behind the shared window scenarios of tests/windows.
#include "QtWindowDriver.h"

#include "FormCalibrate.h"
#include "FormInputCheck.h"
#include "FormMain.h"
#include "GraphFrame.h"
#include "FormOption.h"
#include "QtPrompter.h"

#include "meter/Meter.h"
#include "shell/DebugLog.h"
#include "support/FakeMachine.h"

#include <QAction>
#include <QPlainTextEdit>
#include <QApplication>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QTimer>

namespace tvx::test {

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
        else if (clock.elapsed() > 30000) {
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

namespace {

// The active message box with this title, answered: its text.
std::optional<std::string> answerQtBox(const std::string& title, Desktop::Button button)
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

class QtDesktop final : public Desktop {
public:
    QtDesktop()
    {
        m_owner.setGeometry(60, 40, 420, 300);
        m_owner.show();
    }

    Prompter& prompter() override { return m_prompter; }

    void play(std::deque<PlayerStep> steps, const std::function<void()>& modal) override
    {
        QApplication::setActiveWindow(&m_owner); // the window that asks
        playWhile(std::move(steps), modal);
    }

    WindowDriver& numberDialog() override { return m_dialog; }
    WindowDriver& options() override { return m_options; }
    WindowDriver& calibration() override { return m_calibration; }

    WindowDriver::Box owner() override
    {
        const QRect r = m_owner.frameGeometry();
        return {r.x(), r.y(), r.width(), r.height()};
    }

    std::optional<std::string> answerBox(const std::string& title, Button button) override
    {
        return answerQtBox(title, button);
    }

    void showOptions(ConfigFile& config, const CaptureBitmap* lastCapture, const WindowServices& services) override
    {
        ui::FormOption form(config, lastCapture, {services.screen, services.waiter, services.clock, services.cycleSkip},
                            &m_owner);
        if (services.settingsChanged)
            QObject::connect(&form, &ui::FormOption::settingsChanged, services.settingsChanged);
        form.exec();
    }

    bool showCalibration(Settings& settings, const CaptureBitmap* screen, const WindowServices& services) override
    {
        ui::FormCalibrate form(settings, screen, {services.screen, services.waiter, services.clock, services.cycleSkip},
                               services.log, &m_owner);
        return form.exec() == QDialog::Accepted;
    }

private:
    template <typename Window>
    QWidget* shown()
    {
        return m_owner.findChild<Window*>();
    }

    QWidget m_owner;
    ui::QtPrompter m_prompter{&m_owner};
    QtWindowDriver m_dialog{[this] { return shown<ui::FormInputCheck>(); }};
    QtWindowDriver m_options{[this] { return shown<ui::FormOption>(); }};
    QtWindowDriver m_calibration{[this] { return shown<ui::FormCalibrate>(); }};
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

std::unique_ptr<Desktop> makeDesktop()
{
    return std::make_unique<QtDesktop>();
}

} // namespace tvx::test
