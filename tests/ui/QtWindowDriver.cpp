// The Qt front end behind the shared window scenarios of tests/windows.
#include "QtWindowDriver.h"

#include "FormCalibrate.h"
#include "FormCompact.h"
#include "FormHistory.h"
#include "FormInputCheck.h"
#include "FormMain.h"
#include "GraphFrame.h"
#include "FormOption.h"
#include "QtPrompter.h"

#include "TextCodecFactory.h"
#include "base/Utf8Path.h"
#include "config/ConfigFile.h"
#include "meter/Meter.h"
#include "shell/DebugLog.h"
#include "support/FakeMachine.h"
#include "view/LiveView.h"

#include <QAction>
#include <QCheckBox>
#include <QGroupBox>
#include <QStyle>
#include <QTabBar>
#include <QHeaderView>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QTableWidget>
#include <QToolButton>
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

std::vector<std::string> clippedTexts(QWidget* window)
{
    std::vector<std::string> clipped;
    if (window == nullptr)
        return clipped;
    QApplication::processEvents(); // the layouts follow texts set since the last event
    const auto check = [&](const QString& text, int needed, int room) {
        if (!text.isEmpty() && needed > room)
            clipped.push_back(text.toStdString() + " (" + std::to_string(needed) + " > " + std::to_string(room) + ")");
    };
    const auto advance = [](const QWidget* w, QString text) {
        return w->fontMetrics().horizontalAdvance(text.remove(QLatin1Char('&')));
    };
    for (QWidget* w : window->findChildren<QWidget*>()) {
        if (!w->isVisibleTo(window) || w->width() <= 0)
            continue;
        // A control pushed past the window's edge is cut off whatever its own size.
        const QPoint end = w->mapTo(window, QPoint(w->width(), w->height()));
        if (qobject_cast<QAbstractButton*>(w) || qobject_cast<QLabel*>(w))
            check(w->objectName() + QStringLiteral(" reaches past the window"), end.x(), window->width());
        if (auto* label = qobject_cast<QLabel*>(w)) {
            if (label->wordWrap())
                check(label->text(), label->heightForWidth(label->contentsRect().width()), label->contentsRect().height());
            else
                check(label->text(), label->fontMetrics().horizontalAdvance(label->text()), label->contentsRect().width());
        } else if (auto* box = qobject_cast<QCheckBox*>(w)) {
            check(box->text(), box->sizeHint().width(), box->width());
        } else if (auto* button = qobject_cast<QAbstractButton*>(w)) {
            check(button->text(), advance(button, button->text()) + 6, button->width());
        } else if (auto* group = qobject_cast<QGroupBox*>(w)) {
            check(group->title(), advance(group, group->title()) + 16, group->width());
        } else if (auto* combo = qobject_cast<QComboBox*>(w)) {
            const int arrow = combo->style()->pixelMetric(QStyle::PM_ScrollBarExtent) + 8;
            for (int i = 0; i < combo->count(); ++i)
                check(combo->itemText(i), advance(combo, combo->itemText(i)) + arrow, combo->width());
        } else if (auto* tabs = qobject_cast<QTabWidget*>(w)) {
            const QTabBar* bar = tabs->tabBar();
            for (int i = 0; i < bar->count(); ++i)
                check(bar->tabText(i), bar->tabRect(i).right(), tabs->width());
        }
    }
    return clipped;
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

// What the screen shows of a widget, as a file for the README when TALLIVEX_SHOT_DIR is set.
void shoot(QWidget* widget, const std::string& name)
{
    if (widget != nullptr)
        QtWindowDriver([widget] { return widget; }).shoot(name);
}

class QtMainWindowHost final : public MainWindowHost {
public:
    QtMainWindowHost(Settings& settings, DebugLog& log, FakeMachine& machine)
        : m_config(settings, log.path().parent_path(), machine, *m_codec, &log),
          m_window(programTitle("MapleStory"), log, log.path().parent_path()),
          m_ports{machine.clock, machine, machine, machine, machine, machine, machine, m_window},
          m_meter(settings, m_ports, log)
    {
        m_window.setConfigFile(&m_config, {});
        m_window.attach(m_meter);
    }

    Meter& meter() override { return m_meter; }

    void play(std::deque<PlayerStep> steps, const std::function<void()>& modal) override
    {
        playWhile(std::move(steps), modal);
    }
    WindowDriver& version() override { return m_version; }
    WindowDriver& joke() override { return m_joke; }

    void load() override
    {
        m_window.FormMain_Load();
        m_window.show();
        m_window.resize(900, 560);
        QTest::qWait(20);
    }

    void retranslate() override
    {
        m_window.retranslate();
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

    void click(const std::string& control) override
    {
        m_window.findChild<QAbstractButton*>(QString::fromStdString(control))->click();
    }

    bool fits(const std::string& control) override
    {
        const auto* label = m_window.findChild<QLabel*>(QString::fromStdString(control));
        return label != nullptr && label->fontMetrics().horizontalAdvance(label->text()) <= label->width();
    }

    std::vector<std::string> clipped() override
    {
        std::vector<std::string> texts = clippedTexts(&m_window);
        if (compactOpen())
            for (std::string& text : clippedTexts(compact()))
                texts.push_back(std::move(text));
        return texts;
    }

    WindowDriver::Box screen() override
    {
        const QRect r = QGuiApplication::primaryScreen()->geometry();
        return {r.x(), r.y(), r.width(), r.height()};
    }

    void close() override { m_window.close(); }

    bool compactOpen() override { return compact() != nullptr && compact()->isVisible(); }
    std::string compactTitle() override { return compact()->windowTitle().toStdString(); }
    std::optional<std::uint32_t> compactStateColour() override
    {
        return compact()->findChild<QLabel*>(QStringLiteral("shpState"))->property("stateColour").toUInt();
    }

    std::vector<std::string> compactTexts() override
    {
        std::vector<std::string> texts;
        const auto add = [&](const QString& name) {
            const auto* label = compact()->findChild<QLabel*>(name);
            if (label != nullptr)
                texts.push_back(label->text().toStdString());
            return label != nullptr;
        };
        add(QStringLiteral("lblState"));
        add(QStringLiteral("lblLevel"));
        for (int i = 0; add(QStringLiteral("lblCaption%1").arg(i)) && add(QStringLiteral("lblValue%1").arg(i)); ++i) {
        }
        return texts;
    }

    // Every line inside the window.
    bool compactWhole() override
    {
        const auto values = compact()->findChildren<QLabel*>(QRegularExpression(QStringLiteral("^lblValue")));
        return std::all_of(values.begin(), values.end(), [this](const QLabel* value) {
            return value->geometry().bottom() <= compact()->height() - kCompactMargin;
        });
    }

    bool compactOverGame() override
    {
        return compact()->windowFlags().testFlags(Qt::Tool | Qt::WindowStaysOnTopHint) && compact()->parent() == nullptr;
    }

    WindowDriver::Point compactPlace() override { return {compact()->pos().x(), compact()->pos().y()}; }
    int compactOpacity() override { return qRound(compact()->windowOpacity() * 100); }

    void dragCompact(int dx, int dy) override
    {
        QWidget& window = *compact();
        const QPoint grip(60, 40);
        const QPoint by(dx, dy);
        const QPoint from = window.mapToGlobal(grip);
        QMouseEvent press(QEvent::MouseButtonPress, grip, from, Qt::LeftButton, Qt::LeftButton, {});
        QApplication::sendEvent(&window, &press);
        for (const QPoint step : {by / 2, by}) {
            QMouseEvent move(QEvent::MouseMove, grip + step, from + step, Qt::NoButton, Qt::LeftButton, {});
            QApplication::sendEvent(&window, &move);
        }
        QMouseEvent release(QEvent::MouseButtonRelease, grip + by, from + by, Qt::LeftButton, Qt::NoButton, {});
        QApplication::sendEvent(&window, &release);
    }

    void compactMenu(int opacity) override
    {
        if (opacity == 0)
            return compact()->findChild<QToolButton*>(QStringLiteral("cmdClose"))->click();
        std::unique_ptr<QMenu> menu(compact()->makeMenu());
        menu->findChild<QAction*>(QStringLiteral("menuOpacity%1").arg(opacity))->trigger();
    }

    void shootCompact(const std::string& name) override { shoot(compact(), name); }

    HistoryShown history() override
    {
        HistoryShown shown;
        const auto* form = m_window.findChild<QWidget*>(QStringLiteral("frmHistory"));
        if (form == nullptr || !form->isVisible())
            return shown;
        shown.title = form->windowTitle().toStdString();
        shown.columnsWhole = true;
        for (const char* name : {"grdSessions", "grdDays", "grdWeeks"}) {
            const auto* grid = form->findChild<QTableWidget*>(QLatin1String(name));
            std::vector<std::vector<std::string>> table(1);
            for (int c = 0; c < grid->columnCount(); ++c) {
                const QString header = grid->horizontalHeaderItem(c)->text();
                table[0].push_back(header.toStdString());
                shown.columnsWhole = shown.columnsWhole &&
                                     grid->horizontalHeader()->fontMetrics().horizontalAdvance(header) <= grid->columnWidth(c);
            }
            for (int r = 0; r < grid->rowCount(); ++r) {
                table.emplace_back();
                for (int c = 0; c < grid->columnCount(); ++c) {
                    const QString cell = grid->item(r, c)->text();
                    table.back().push_back(cell.toStdString());
                    shown.columnsWhole = shown.columnsWhole && grid->fontMetrics().horizontalAdvance(cell) <= grid->columnWidth(c);
                }
            }
            shown.pages.push_back(table);
        }
        shown.exportEnabled = form->findChild<QPushButton*>(QStringLiteral("cmdExport"))->isEnabled();
        return shown;
    }

    std::optional<std::string> exportHistory(const std::filesystem::path& to) override
    {
        auto* form = m_window.findChild<ui::FormHistory*>(QStringLiteral("frmHistory"));
        QString proposed;
        form->setSaveChooser([&](QWidget*, const QString& suggestion) {
            proposed = suggestion;
            return QString::fromStdString(pathUtf8(to));
        });
        form->findChild<QPushButton*>(QStringLiteral("cmdExport"))->click();
        return proposed.toStdString();
    }

    void shootHistory(const std::string& name) override
    {
        shoot(m_window.findChild<QWidget*>(QStringLiteral("frmHistory")), name);
    }

private:
    QAction* action(const std::string& item)
    {
        QAction* found = m_window.action(item.c_str());
        EXPECT_NE(found, nullptr) << item;
        return found;
    }
    ui::FormCompact* compact() { return m_window.formCompact(); }

    std::unique_ptr<TextCodec> m_codec = platform::makeTextCodec();
    ConfigFile m_config;
    ui::FormMain m_window;
    MeterPorts m_ports;
    Meter m_meter;
    QtWindowDriver m_version{[this] { return m_window.findChild<QWidget*>(QStringLiteral("FormVersion")); }};
    QtWindowDriver m_joke{[this] { return m_window.findChild<QWidget*>(QStringLiteral("FormJoke")); }};
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
