#include "FormMain.h"
#include "CaptureImage.h"
#include "Fonts.h"

#include "FormCompact.h"
#include "FormDirectX.h"
#include "FormHistory.h"
#include "FormJoke.h"
#include "GraphFrame.h"

#include "QtPorts.h"
#include "QtLanguage.h"
#include "QtText.h"

#include "graph/GraphLayout.h"
#include "view/FormMainCommands.h"
#include "view/FormMainLayout.h"
#include "view/LiveView.h"
#include "view/LiveWindowModel.h"
#include "measurement/SessionHistory.h"
#include "config/ConfigFile.h"
#include "meter/Meter.h"
#include "recognition/CaptureFile.h"
#include "shell/DebugLog.h"
#include "base/Errors.h"
#include "base/Utf8Path.h"

#include <QAction>
#include <QCloseEvent>
#include <QEvent>
#include <QMouseEvent>
#include <QResizeEvent>
#include <QDialog>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTextCursor>
#include <QTextDocument>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace tvx::ui {

namespace {

QLabel* namedLabel(const QString& name, const QString& text, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setObjectName(name);
    return label;
}

// A live line keeps to its place: long rates (high levels earn billions an hour) are drawn
// a little smaller rather than cut off.
void showFitted(QLabel* label, const QString& text)
{
    QFont font = label->parentWidget()->font();
    if (font.pointSizeF() <= 0) {
        label->setText(text);
        return;
    }
    const qreal smallest = font.pointSizeF() - 2;
    while (QFontMetrics(font).horizontalAdvance(text) > label->width() && font.pointSizeF() > smallest)
        font.setPointSizeF(font.pointSizeF() - 0.5);
    label->setFont(font);
    label->setText(text);
}

} // namespace

FormMain::FormMain(std::string_view title, DebugLog& log, std::filesystem::path programFolder, QWidget* parent)
    : QMainWindow(parent), m_log(log), m_programFolder(std::move(programFolder))
{
    setObjectName(QStringLiteral("FormMain"));
    setWindowTitle(qtText(title));
    buildMenus();

    auto* central = new QWidget(this);
    auto* outer = new QVBoxLayout(central);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(0);
    // The etched separator under the menu bar.
    auto* linMenu = new QFrame(central);
    linMenu->setObjectName(QStringLiteral("linMenu"));
    linMenu->setFrameShape(QFrame::HLine);
    linMenu->setFrameShadow(QFrame::Sunken);
    outer->addWidget(linMenu);
    auto* columns = new QHBoxLayout;
    columns->setContentsMargins(0, 2, 0, 0);
    outer->addLayout(columns, 1);
    auto* left = new QWidget(central);
    left->setFixedWidth(kPanelClientWidth);
    auto* rows = new QVBoxLayout(left);
    rows->setContentsMargins(8, 4, 8, 8);
    rows->addWidget(buildResults());
    m_txtLog = new QPlainTextEdit(left);
    m_txtLog->setObjectName(QStringLiteral("txtLog"));
    m_txtLog->setReadOnly(true);
    // Text is only ever added by the program: no undo steps are kept for it.
    m_txtLog->setUndoRedoEnabled(false);
    m_txtLog->setFont(logFont());
    m_txtLog->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_txtLog->setFixedWidth(kTxtLogWidth);
    rows->addWidget(m_txtLog, 1);
    rows->addWidget(buildDebugArea());
    // The live figures: two lines at the foot of the panel.
    m_lblLiveRates = namedLabel(QStringLiteral("lblLiveRates"), QString(), left);
    m_lblLiveOutlook = namedLabel(QStringLiteral("lblLiveOutlook"), QString(), left);
    for (QLabel* line : {m_lblLiveRates, m_lblLiveOutlook}) {
        line->setFixedSize(kTxtLogWidth, (kLiveLinesHeight - 2) / 2);
        rows->addWidget(line);
    }
    columns->addWidget(left);

    m_frmGraph = new GraphFrame(central);
    m_frmGraph->setDebugLog(&m_log);
    columns->addWidget(m_frmGraph, 1);
    setCentralWidget(central);

    m_timCaptureInterval = new QTimer(this);
    m_timCaptureInterval->setObjectName(QStringLiteral("timCaptureInterval"));
    m_timCaptureInterval->setInterval(10000);
    m_timDoHLInterval = new QTimer(this);
    m_timDoHLInterval->setObjectName(QStringLiteral("timDoHLInterval"));
    resize(900, 560);
}

FormMain::~FormMain() = default;

QAction* FormMain::action(const char* name) const
{
    return findChild<QAction*>(QString::fromLatin1(name));
}

void FormMain::buildMenus()
{
    auto add = [this](QWidget* menu, const MenuItem& item) {
        auto* entry = new QAction(qtText(item.text()), this);
        entry->setObjectName(qtText(item.name));
        menu->addAction(entry);
        const MenuCommand command = item.command;
        connect(entry, &QAction::triggered, this, [this, command] { runCommand(command); });
    };
    for (const MenuBarEntry& entry : mainMenu()) {
        if (entry.items.empty()) {
            add(menuBar(), entry.command);
            continue;
        }
        QMenu* menu = menuBar()->addMenu(qtText(entry.text()));
        menu->setObjectName(qtText(entry.name));
        for (const MenuItem& item : entry.items)
            add(menu, item);
    }
    action("menuRun")->setEnabled(false);
    action("menuStop")->setEnabled(false);
}

void FormMain::retranslate()
{
    m_shownLanguage = currentLanguage();
    followQtLanguage();
    for (const MenuBarEntry& entry : mainMenu()) {
        if (entry.items.empty()) {
            action(entry.command.name.data())->setText(qtText(entry.command.text()));
            continue;
        }
        if (auto* menu = menuBar()->findChild<QMenu*>(qtText(entry.name)))
            menu->setTitle(qtText(entry.text()));
        for (const MenuItem& item : entry.items)
            action(item.name.data())->setText(qtText(item.text()));
    }
    for (std::size_t field = 0; field < m_headers.size(); ++field)
        m_headers[field]->setText(qtTr(kResultHeaders[field]));
    for (std::size_t row = 0; row < m_rowCaptions.size(); ++row)
        m_rowCaptions[row]->setText(qtTr(kResultRows[row].caption));
    m_cmdTempStop->setText(qtTr(kTempStopCaption));
    m_cmdCapture->setText(qtTr(kTestCaptureCaption));
    m_cmdRecognize->setText(qtTr(kTestRecognizeCaption));
    m_frmGraph->retranslate();
    if (m_formCompact)
        m_formCompact->retranslate();
    if (m_formHistory)
        m_formHistory->retranslate();
    if (!m_meter)
        return;
    action("menuRun")->setText(qtTr(m_meter->state().controls.runCaption));
    showLive();
}

void FormMain::runCommand(MenuCommand command)
{
    if (!m_commands)
        return;
    switch (m_commands->run(command)) {
    case WindowAction::Close: close(); break;
    case WindowAction::ShowOptions: menuOption_Click(); break;
    case WindowAction::ShowVersion: menuVersion_Click(); break;
    case WindowAction::ToggleCompact: menuCompact_Click(); break;
    case WindowAction::ShowHistory: menuHistory_Click(); break;
    case WindowAction::None: break;
    }
}

QWidget* FormMain::buildResults()
{
    auto* frame = new QFrame(this);
    frame->setObjectName(QStringLiteral("frmResult"));
    auto* grid = new QGridLayout(frame);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(10);
    for (std::size_t field = 0; field < kResultHeaders.size(); ++field) {
        auto* header = new QLabel(qtTr(kResultHeaders[field]), frame);
        m_headers[field] = header;
        header->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        grid->addWidget(header, 0, static_cast<int>(field) + 1);
    }
    std::array<std::array<QLabel*, 5>*, 3> rows{&m_startRow, &m_endRow, &m_elapseRow};
    for (std::size_t at = 0; at < kResultRows.size(); ++at) {
        const int row = static_cast<int>(at) + 1;
        m_rowCaptions[at] = new QLabel(qtTr(kResultRows[at].caption), frame);
        grid->addWidget(m_rowCaptions[at], row, 0);
        for (std::size_t field = 0; field < kResultFields.size(); ++field) {
            QLabel* value = namedLabel(qtText(kResultRows[at].prefix) + qtText(kResultFields[field]), QString(), frame);
            value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
            grid->addWidget(value, row, static_cast<int>(field) + 1);
            (*rows[at])[field] = value;
        }
    }
    m_cmdTempStop = new QPushButton(qtTr(kTempStopCaption), frame);
    m_cmdTempStop->setObjectName(QStringLiteral("cmdTempStop"));
    connect(m_cmdTempStop, &QPushButton::clicked, this, [this] {
        if (m_meter)
            m_meter->cycle().cmdTempStop_Click(m_meter->settings().StartDelay);
    });
    grid->addWidget(m_cmdTempStop, 4, 0, 1, 2);
    for (std::size_t region = 0; region < kCaptureFields.size(); ++region) {
        m_lblCapture[region] = namedLabel(QStringLiteral("lblCapture%1").arg(region), QString(), frame);
        m_lblCapture[region]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        grid->addWidget(m_lblCapture[region], 4, static_cast<int>(kCaptureFields[region]) + 1);
    }
    return frame;
}

QWidget* FormMain::buildDebugArea()
{
    m_frmDebug = new QFrame(this);
    m_frmDebug->setObjectName(QStringLiteral("frmDebug"));
    m_frmDebug->setFrameShape(QFrame::StyledPanel);
    auto* grid = new QGridLayout(m_frmDebug);
    for (int region = 0; region < 3; ++region) {
        auto* picture = namedLabel(QStringLiteral("picCapture%1").arg(region), QString(), m_frmDebug);
        picture->setFixedHeight(24);
        picture->setMinimumWidth(120);
        m_picCapture[static_cast<std::size_t>(region)] = picture;
        grid->addWidget(picture, 0, region);
    }
    m_cmdCapture = new QPushButton(qtTr(kTestCaptureCaption), m_frmDebug);
    m_cmdCapture->setObjectName(QStringLiteral("cmdCapture"));
    m_cmdRecognize = new QPushButton(qtTr(kTestRecognizeCaption), m_frmDebug);
    m_cmdRecognize->setObjectName(QStringLiteral("cmdRecognize"));
    m_lblElapse = namedLabel(QStringLiteral("lblElapse"), QString(), m_frmDebug);
    grid->addWidget(m_cmdCapture, 1, 0);
    grid->addWidget(m_cmdRecognize, 1, 1);
    grid->addWidget(m_lblElapse, 1, 2);
    connect(m_cmdCapture, &QPushButton::clicked, this, [this] {
        if (m_meter)
            m_meter->cycle().cmdCapture_Click();
    });
    connect(m_cmdRecognize, &QPushButton::clicked, this, [this] {
        if (m_meter)
            m_meter->cycle().cmdRecognize_Click();
    });
    m_frmDebug->setVisible(false);
    return m_frmDebug;
}

void FormMain::attach(Meter& meter)
{
    m_meter = &meter;
    m_commands = std::make_unique<FormMainCommands>(meter, m_log, m_programFolder);
    m_commands->setDocumentFolder(m_documentFolder);
    m_commands->setEnvironmentSource(m_environment);
    m_frmGraph->setSettings(meter.settings());
    m_frmGraph->setGraphView(meter.state().graphView);
    m_frmGraph->setMeterControls(&meter.state().controls);
    meter.logBox().setListener([this](std::string_view added) { showLogBox(added); });
    connect(m_timCaptureInterval, &QTimer::timeout, this, [this] { m_meter->cycle().timCaptureInterval_Timer(); });
    connect(m_timDoHLInterval, &QTimer::timeout, this, [this] { m_meter->watch().timDoHLInterval_Timer(); });
}

void FormMain::FormMain_Load()
{
    trapErrors(m_log, "FormMain_Load", [this] {
        m_timDoHLInterval->setInterval(m_meter->settings().DoHLInterval);
        m_frmGraph->setVisible(m_meter->settings().Graph);
        // Gestures first: an auto start waits StartDelay, and they must work meanwhile.
        followGestureSetting();
        // Open when the meter last closed: back at once, before an auto start's wait.
        if (m_meter->settings().CompactShown)
            menuCompact_Click();
        m_meter->load(m_meter->clock());
        if (m_closing)
            return; // closed during the start-up wait
        m_frmGraph->setGraphBuffer(m_meter->state().graph.get());
        m_frmGraph->GraphFrameDisplay();
        graphDataChanged();
        m_log.WriteDebugLog("Program StartUp Complete ");
    });
}

void FormMain::showLogBox(std::string_view added)
{
    const LogBox& box = m_meter->logBox();
    const std::string& text = box.text();
    const auto breaks = static_cast<int>(std::count(text.begin(), text.end(), '\n'));
    // Only the new text is added and the lines the box let go are cut: laying the whole
    // box out again at every reading grows with its length. Whenever the editor's blocks
    // do not match the box's lines (a clear, a lone CR), the text is set whole.
    QTextDocument* document = m_txtLog->document();
    bool whole = text.size() < added.size() || std::string_view(text).substr(text.size() - added.size()) != added ||
                 document->blockCount() != m_logBoxBreaks + 1;
    if (!whole) {
        QTextCursor end(document);
        end.movePosition(QTextCursor::End);
        end.insertText(qtText(added));
        const int cut = document->blockCount() - (breaks + 1);
        if (cut > 0) {
            QTextCursor front(document);
            front.movePosition(QTextCursor::NextBlock, QTextCursor::KeepAnchor, cut);
            front.removeSelectedText();
        }
        whole = cut < 0 || document->characterCount() - 1 != static_cast<int>(qtText(text).remove(QLatin1Char('\r')).size());
    }
    if (whole)
        m_txtLog->setPlainText(qtText(text));
    m_logBoxBreaks = breaks;
    QTextCursor cursor = m_txtLog->textCursor();
    // The box keeps CR LF; the editor counts one character per line break.
    QString before = qtText(std::string_view(text).substr(0, box.caret()));
    before.remove(QLatin1Char('\r'));
    cursor.setPosition(static_cast<int>(before.size()));
    m_txtLog->setTextCursor(cursor);
    m_txtLog->ensureCursorVisible();
}

void FormMain::showRow(const ResultRow& row, const std::array<QLabel*, 5>& labels)
{
    const std::string* texts[] = {&row.Time, &row.Lv, &row.Exp, &row.ExpPS, &row.Money};
    for (std::size_t i = 0; i < labels.size(); ++i)
        labels[i]->setText(qtText(*texts[i]));
}

void FormMain::resultsChanged()
{
    const ResultLabels& labels = m_meter->state().labels;
    showRow(labels.Start, m_startRow);
    showRow(labels.End, m_endRow);
    showRow(labels.Elapse, m_elapseRow);
    // A session that begins shows its account first: the live state follows it.
    showLive();
}

void FormMain::liveChanged()
{
    showLive();
}

void FormMain::showLive()
{
    if (!m_meter)
        return;
    const LiveView view = meterLiveView(*m_meter);
    showFitted(m_lblLiveRates, qtText(view.rates));
    showFitted(m_lblLiveOutlook, qtText(view.outlook));
    if (m_formCompact)
        m_formCompact->showView(view);
}

void FormMain::controlsChanged()
{
    const MeterControls& controls = m_meter->state().controls;
    action("menuRun")->setEnabled(controls.runEnabled);
    action("menuRun")->setText(qtTr(controls.runCaption));
    action("menuStop")->setEnabled(controls.stopEnabled);
    m_cmdCapture->setEnabled(controls.testButtonsEnabled);
    m_cmdRecognize->setEnabled(controls.testButtonsEnabled);
    const QString tempStopStyle = controls.tempStopRed ? QStringLiteral("background-color: rgb(255, 0, 0);") : QString();
    if (m_cmdTempStop->styleSheet() != tempStopStyle)
        m_cmdTempStop->setStyleSheet(tempStopStyle);
    auto run = [](QTimer* timer, bool on) {
        if (on && !timer->isActive())
            timer->start();
        else if (!on && timer->isActive())
            timer->stop();
    };
    if (m_timDoHLInterval->interval() != controls.doHLIntervalMs)
        m_timDoHLInterval->setInterval(controls.doHLIntervalMs);
    run(m_timCaptureInterval, controls.captureTimerEnabled);
    run(m_timDoHLInterval, controls.doHLTimerEnabled);
    // A start, stop or suspend changes the state the live lines show.
    showLive();
}

void FormMain::showNotice(const std::string& text, const std::string& title)
{
    if (!m_notice) {
        m_notice = new QMessageBox(QMessageBox::Warning, qtText(title), qtText(text), QMessageBox::Ok, this);
        m_notice->setObjectName(QStringLiteral("frmNotice"));
        m_notice->setModal(false);
    }
    m_notice->setWindowTitle(qtText(title));
    m_notice->setText(qtText(text));
    m_notice->show();
}

void FormMain::hideNotice()
{
    if (m_notice)
        m_notice->hide();
}

void FormMain::graphDataChanged()
{
    const GraphView& view = m_meter->state().graphView;
    m_frmGraph->setGraphBuffer(m_meter->state().graph.get());
    m_frmGraph->GraphDataDisplay(view.timeShift, view.zoom);
}

void FormMain::graphFrameChanged()
{
    m_frmGraph->GraphFrameDisplay();
}

void FormMain::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    // Form_Activate: the graph's frame is drawn again when the player comes back.
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && m_meter && m_meter->settings().Graph)
        m_frmGraph->GraphFrameDisplay();
}

void FormMain::mousePressEvent(QMouseEvent* event)
{
    // Form_Click: a click on the window's background repaints everything.
    QMainWindow::mousePressEvent(event);
    try {
        m_log.WriteDebugLog("Click : Window Refresh ");
    } catch (const RuntimeError&) {
    }
    m_frmGraph->update();
    update();
}

void FormMain::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    Form_Resize();
}

void FormMain::Form_Resize()
{
    if (!m_meter || isMinimized())
        return;
    const int menuHeight = menuBar()->height();
    const FormResizeLayout layout = formResizeLayout(width(), height() - menuHeight, m_meter->settings().Graph);
    // Without the graph the window has the left panel's width only.
    setMinimumSize(layout.frmGraphVisible ? kMinGraphClientWidth : kPanelClientWidth, kMinClientHeight + menuHeight);
    setMaximumWidth(layout.frmGraphVisible ? QWIDGETSIZE_MAX : kPanelClientWidth);
    if (layout.outerWidthTwips || layout.outerHeightTwips)
        resize(layout.clientWidth, layout.clientHeight + menuHeight);
    m_frmGraph->setVisible(layout.frmGraphVisible);
    m_frmDebug->setVisible(m_meter->state().DebugMode);
    if (layout.frmGraphVisible)
        m_frmGraph->GraphFrameDisplay();
    try {
        m_log.WriteDebugLog("Resaizing Form ･･･ End ");
    } catch (const RuntimeError&) {
    }
}

void FormMain::captureTaken(const CaptureBitmap& screen)
{
    if (!m_frmDebug->isVisible())
        return;
    // Only the regions are converted, never the whole screen.
    for (int region = 0; region < 3; ++region) {
        const CaptureRegionRect& rect = m_meter->settings().CaptureRegion[static_cast<std::size_t>(region)];
        m_picCapture[static_cast<std::size_t>(region)]->setPixmap(QPixmap::fromImage(regionImage(screen, rect)));
    }
}

void FormMain::captureCaption(int region, const std::string& caption)
{
    if (region >= 0 && region < 3)
        m_lblCapture[static_cast<std::size_t>(region)]->setText(qtText(caption));
}

void FormMain::recognizeElapsed(const std::string& text)
{
    m_lblElapse->setText(qtText(text));
}

void FormMain::sessionReset()
{
    hideNotice();
}

void FormMain::debugModeChanged()
{
    m_frmDebug->setVisible(m_meter->state().DebugMode);
}

void FormMain::menuOption_Click()
{
    if (!m_config)
        return;
    const auto& capture = m_meter->cycle().lastCapture();
    if (!m_formOption) {
        m_formOption = new FormOption(*m_config, capture ? &*capture : nullptr, m_patternCapture, this);
        m_formOption->setWindowFlag(Qt::Window);
        m_formOption->setDebugSwitch({[this] { return m_meter->state().DebugMode; },
                                      [this](bool on) { m_meter->setDebugMode(on); }});
        connect(m_formOption, &FormOption::settingsChanged, this, [this] {
            setWindowTitle(qtText(programTitle(m_meter->settings().SearchWindowName)));
            if (followLanguageSetting(m_meter->settings(), m_shownLanguage))
                retranslate();
            followGestureSetting();
            m_meter->settingsChanged();
            showLive();
            // A load or a reset may have moved or closed the compact window.
            if (m_formCompact)
                m_formCompact->followSettings();
            // The graph may have been switched on or off: the window takes its new shape now.
            Form_Resize();
        });
    } else if (capture) {
        m_formOption->setCapture(*capture);
    }
    m_formOption->show();
    m_formOption->raise();
}

void FormMain::followGestureSetting()
{
    if (!m_meter || !m_gestureSource || !m_gesturePrompter)
        return;
    if (!m_formDirectX)
        m_formDirectX = new FormDirectX(*m_meter, *m_gestureSource, m_log, *m_gesturePrompter, this);
    m_formDirectX->followSetting();
}

void FormMain::setIntervalSeconds(std::int32_t seconds)
{
    if (!m_meter)
        return;
    m_meter->state().intervalSecondsOverride = seconds;
    m_frmGraph->setIntervalSeconds(seconds);
    m_timCaptureInterval->setInterval(FormMainCommands::captureTimerMs(seconds));
}

void FormMain::menuVersion_Click()
{
    QDialog dialog(this);
    dialog.setObjectName(QStringLiteral("FormVersion"));
    dialog.setWindowTitle(qtTr(kVersionCaption));
    auto* rows = new QVBoxLayout(&dialog);
    rows->setContentsMargins(16, 16, 16, 12);
    const std::string target = m_meter ? m_meter->settings().SearchWindowName : std::string("MapleStory");
    auto* title = namedLabel(QStringLiteral("lblTitle"), qtText(FormMainCommands::versionHeading(target)), &dialog);
    QFont big = title->font();
    big.setPointSize(big.pointSize() + 4);
    big.setBold(true);
    title->setFont(big);
    rows->addWidget(title);
    rows->addWidget(namedLabel(QStringLiteral("lblVersion"), qtText(FormMainCommands::versionLine()), &dialog));
    auto* ok = new QPushButton(QStringLiteral("OK"), &dialog);
    ok->setObjectName(QStringLiteral("cmdOK"));
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, &dialog, &QDialog::accept);
    auto* joke = new QPushButton(qtTr(JokePopup::kOpenCaption), &dialog);
    joke->setObjectName(QStringLiteral("cmdJoke"));
    joke->setAutoDefault(false);
    connect(joke, &QPushButton::clicked, &dialog, [&dialog] {
        FormJoke popup(&dialog);
        popup.run();
    });
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(joke);
    buttons->addStretch(1);
    buttons->addWidget(ok);
    rows->addLayout(buttons);
    dialog.exec();
}

void FormMain::menuCompact_Click()
{
    if (!m_meter)
        return;
    trapErrors(m_log, "menuCompact_Click", [this] {
        if (!m_formCompact)
            m_formCompact = std::make_unique<FormCompact>(m_meter->settings(), [this] { rememberCompact(); });
        if (m_formCompact->isVisible()) {
            m_formCompact->close();
        } else {
            showLive();
            m_formCompact->open();
        }
    });
}

void FormMain::rememberCompact()
{
    // Only the window's place is written: option edits meant for this run stay unsaved.
    if (m_config)
        m_config->run(ConfigFile::SaveWindowPlace);
}

void FormMain::menuHistory_Click()
{
    if (!m_config || !m_meter)
        return;
    trapErrors(m_log, "menuHistory_Click", [this] {
        if (!m_formHistory) {
            m_formHistory = new FormHistory(m_config->prompter(), this);
            m_formHistory->setWindowFlag(Qt::Window);
        }
        m_formHistory->show();
        m_formHistory->raise();
        // Read afresh each time: the running session adds to it.
        m_formHistory->load(historyFilePath(m_meter->settings()));
    });
}

void FormMain::closeEvent(QCloseEvent* event)
{
    if (!m_closing && m_meter) {
        m_closing = true;
        // Hidden, not closed: an open compact window opens again at the next start.
        if (m_formCompact)
            m_formCompact->hide();
        m_commands->closing();
        if (m_formDirectX)
            m_formDirectX->Form_Unload();
        if (m_notice)
            m_notice->close();
    }
    event->accept();
}

} // namespace tvx::ui
