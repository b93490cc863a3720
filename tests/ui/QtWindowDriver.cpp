// The Qt front end behind the shared window scenarios of tests/windows.
#include "support/WindowDriver.h"

#include "FormCalibrate.h"
#include "FormCompact.h"
#include "FormHistory.h"
#include "FormInputCheck.h"
#include "FormMain.h"
#include "FormOption.h"
#include "GlyphView.h"
#include "GraphFrame.h"
#include "QtPrompter.h"

#include "TextCodecFactory.h"
#include "base/Utf8Path.h"
#include "config/ConfigFile.h"
#include "meter/Meter.h"
#include "shell/DebugLog.h"
#include "support/FakeMachine.h"
#include "view/LiveView.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QStyle>
#include <QTabBar>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <gtest/gtest.h>

#include <cstring>

namespace tvx::test {
namespace {

// The texts of a window's shown controls (or of `only`) that do not fit them.
std::vector<std::string> clippedTexts(QWidget* window, const QWidget* only = nullptr)
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
        if (!w->isVisibleTo(window) || w->width() <= 0 || (only != nullptr && w != only))
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

WindowDriver::Box boxOf(const QRect& r)
{
    return {r.x(), r.y(), r.width(), r.height()};
}

// A Qt window, found afresh for every call, and its children by object name.
class QtWindowDriver final : public WindowDriver {
public:
    explicit QtWindowDriver(std::function<QWidget*()> window) : m_window(std::move(window)) {}

    bool isOpen() override { return m_window() != nullptr && m_window()->isVisible(); }
    std::string title() override { return m_window()->windowTitle().toStdString(); }
    std::string text(const std::string& name) override
    {
        // Labels, buttons and fields show "text", a list its current item.
        const QWidget* widget = control(name);
        const char* property = qobject_cast<const QComboBox*>(widget) ? "currentText" : "text";
        return widget ? widget->property(property).toString().toStdString() : std::string();
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
    void clickNow(const std::string& name) override { qobject_cast<QAbstractButton*>(control(name))->click(); }
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
        QWidget* target = m_window()->focusWidget() ? m_window()->focusWidget() : m_window();
        QCoreApplication::postEvent(target, new QKeyEvent(QEvent::KeyPress, code(key), Qt::NoModifier));
        QCoreApplication::postEvent(target, new QKeyEvent(QEvent::KeyRelease, code(key), Qt::NoModifier));
    }
    void key(const std::string& name, Key key) override { QTest::keyClick(control(name), code(key)); }
    void choose(const std::string& name, int index) override
    {
        if (auto* combo = qobject_cast<QComboBox*>(control(name)))
            combo->setCurrentIndex(index);
        else if (auto* tabs = qobject_cast<QTabWidget*>(control(name)))
            tabs->setCurrentIndex(index);
    }
    std::vector<std::uint16_t> glyph(const std::string& name) override { return glyphView(name)->columns(); }
    void clickCell(const std::string& name, int column, int row) override
    {
        ui::GlyphView* view = glyphView(name);
        QTest::mouseClick(view, Qt::LeftButton, {}, view->pixelCentre(column, row));
    }
    void drag(const std::string& name, Point from, Point to) override
    {
        QWidget* widget = control(name);
        QTest::mousePress(widget, Qt::LeftButton, {}, QPoint(from.x, from.y));
        const QPointF half((from.x + to.x) / 2.0, (from.y + to.y) / 2.0);
        QMouseEvent move(QEvent::MouseMove, half, widget->mapToGlobal(half), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QApplication::sendEvent(widget, &move);
        QTest::mouseRelease(widget, Qt::LeftButton, {}, QPoint(to.x, to.y));
    }
    Frame picture(const std::string& name) override
    {
        const QImage image = (name.empty() ? m_window() : control(name))->grab().toImage().convertToFormat(
            QImage::Format_BGR888);
        Frame frame(image.width(), image.height());
        for (int y = 0; y < image.height(); ++y)
            std::memcpy(frame.row(y), image.constScanLine(y), frame.rowBytes());
        return frame;
    }
    Box frame() override { return boxOf(m_window()->frameGeometry()); }
    void close() override { QMetaObject::invokeMethod(m_window(), "close", Qt::QueuedConnection); }
    std::vector<std::string> clipped(const std::string& name) override
    {
        return clippedTexts(m_window(), name.empty() ? nullptr : control(name));
    }

private:
    static Qt::Key code(Key key)
    {
        return key == Key::Enter ? Qt::Key_Return : key == Key::Escape ? Qt::Key_Escape : Qt::Key_Right;
    }
    QWidget* find(const std::string& name) { return m_window()->findChild<QWidget*>(QString::fromStdString(name)); }
    QWidget* control(const std::string& name)
    {
        QWidget* found = m_window() ? find(name) : nullptr;
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    ui::GlyphView* glyphView(const std::string& name) { return qobject_cast<ui::GlyphView*>(control(name)); }

    std::function<QWidget*()> m_window;
};

class QtDesktop final : public Desktop {
public:
    QtDesktop()
    {
        m_owner.setGeometry(60, 40, 420, 300);
        m_owner.show();
        QApplication::setActiveWindow(&m_owner); // the window that asks
    }

    Prompter& prompter() override { return m_prompter; }

    WindowDriver& numberDialog() override { return m_dialog; }
    WindowDriver& options() override { return m_options; }
    WindowDriver& calibration() override { return m_calibration; }
    WindowDriver::Box owner() override { return boxOf(m_owner.frameGeometry()); }

    std::optional<std::string> answerBox(const std::string& title, Button button) override
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
    QWidget m_owner;
    ui::QtPrompter m_prompter{&m_owner};
    QtWindowDriver m_dialog{[this] { return m_owner.findChild<ui::FormInputCheck*>(); }};
    QtWindowDriver m_options{[this] { return m_owner.findChild<ui::FormOption*>(); }};
    QtWindowDriver m_calibration{[this] { return m_owner.findChild<ui::FormCalibrate*>(); }};
};

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
    WindowDriver& window() override { return m_main; }
    WindowDriver& version() override { return m_version; }
    WindowDriver& joke() override { return m_joke; }
    WindowDriver& compact() override { return m_compact; }
    WindowDriver& history() override { return m_history; }

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

    std::string menuText(const std::string& item) override { return action(item)->text().toStdString(); }
    bool menuEnabled(const std::string& item) override { return action(item)->isEnabled(); }
    void choose(const std::string& item) override { action(item)->trigger(); }
    std::string logBox() override { return m_window.txtLog()->toPlainText().toStdString(); }

    void clickGraphLabel(GraphLabel label) override
    {
        QTest::mouseClick(m_window.findChild<ui::GraphFrame*>()->label(label), Qt::LeftButton);
    }

    WindowDriver::Box screen() override { return boxOf(QGuiApplication::primaryScreen()->geometry()); }
    void close() override { m_window.close(); }

    CompactShown compactShown() override
    {
        ui::FormCompact& form = *m_window.formCompact();
        CompactShown shown;
        QStringList names{QStringLiteral("lblState"), QStringLiteral("lblLevel")};
        for (int i = 0; form.findChild<QLabel*>(QStringLiteral("lblCaption%1").arg(i)); ++i)
            names << QStringLiteral("lblCaption%1").arg(i) << QStringLiteral("lblValue%1").arg(i);
        for (const QString& name : names)
            shown.texts.push_back(form.findChild<QLabel*>(name)->text().toStdString());
        const auto values = form.findChildren<QLabel*>(QRegularExpression(QStringLiteral("^lblValue")));
        shown.whole = std::all_of(values.begin(), values.end(), [&form](const QLabel* value) {
            return value->geometry().bottom() <= form.height() - kCompactMargin;
        });
        shown.overGame = form.windowFlags().testFlags(Qt::Tool | Qt::WindowStaysOnTopHint) && form.parent() == nullptr;
        shown.opacity = qRound(form.windowOpacity() * 100);
        return shown;
    }

    void dragCompact(int dx, int dy) override
    {
        QWidget& window = *m_window.formCompact();
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
            return m_window.formCompact()->findChild<QToolButton*>(QStringLiteral("cmdClose"))->click();
        std::unique_ptr<QMenu> menu(m_window.formCompact()->makeMenu());
        menu->findChild<QAction*>(QStringLiteral("menuOpacity%1").arg(opacity))->trigger();
    }

    std::vector<std::vector<std::vector<std::string>>> historyPages(bool* columnsWhole) override
    {
        std::vector<std::vector<std::vector<std::string>>> pages;
        *columnsWhole = true;
        for (const char* name : {"grdSessions", "grdDays", "grdWeeks"}) {
            const auto* grid = m_window.findChild<QTableWidget*>(QLatin1String(name));
            auto& table = pages.emplace_back();
            // The header's captions first, then the rows' texts.
            for (int r = -1; r < grid->rowCount(); ++r) {
                const QFontMetrics font = r < 0 ? grid->horizontalHeader()->fontMetrics() : grid->fontMetrics();
                auto& texts = table.emplace_back();
                for (int c = 0; c < grid->columnCount(); ++c) {
                    const QString text = (r < 0 ? grid->horizontalHeaderItem(c) : grid->item(r, c))->text();
                    texts.push_back(text.toStdString());
                    *columnsWhole = *columnsWhole && font.horizontalAdvance(text) <= grid->columnWidth(c);
                }
            }
        }
        return pages;
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

private:
    QAction* action(const std::string& item)
    {
        QAction* found = m_window.action(item.c_str());
        EXPECT_NE(found, nullptr) << item;
        return found;
    }
    QWidget* named(const char* name) { return m_window.findChild<QWidget*>(QLatin1String(name)); }

    std::unique_ptr<TextCodec> m_codec = platform::makeTextCodec();
    ConfigFile m_config;
    ui::FormMain m_window;
    MeterPorts m_ports;
    Meter m_meter;
    QtWindowDriver m_main{[this] { return &m_window; }};
    QtWindowDriver m_version{[this] { return named("FormVersion"); }};
    QtWindowDriver m_joke{[this] { return named("FormJoke"); }};
    QtWindowDriver m_compact{[this] { return m_window.formCompact(); }};
    QtWindowDriver m_history{[this] { return named("frmHistory"); }};
};

} // namespace

// The steps run from a timer in the window's loop.
void play(std::deque<PlayerStep> steps, const std::function<void()>& modal)
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

std::unique_ptr<MainWindowHost> makeMainWindowHost(Settings& settings, DebugLog& log, FakeMachine& machine)
{
    return std::make_unique<QtMainWindowHost>(settings, log, machine);
}

std::unique_ptr<Desktop> makeDesktop()
{
    return std::make_unique<QtDesktop>();
}

} // namespace tvx::test
