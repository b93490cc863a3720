#include "FormInputCheck.h"

#include "QtPrompter.h"
#include "QtText.h"

#include "ports/Prompter.h"
#include "view/Placement.h"

#include <QCloseEvent>
#include <QFontDatabase>
#include <QFontInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include <optional>

namespace tvx::ui {
namespace {

QLabel* label(const QString& name, const QString& text, QWidget* parent)
{
    auto* l = new QLabel(text, parent);
    l->setObjectName(name);
    return l;
}

// The dialog's fixed-pitch font; "Terminal" only exists on Windows.
QFont dialogFont()
{
    QFont terminal(QStringLiteral("Terminal"));
    if (QFontInfo(terminal).family() == terminal.family())
        return terminal;
    return QFontDatabase::systemFont(QFontDatabase::FixedFont);
}

} // namespace

QString formatNumber(double value)
{
    return qtText(formatInputNumber(value));
}

FormInputCheck::FormInputCheck(Prompter* messages, QWidget* parent) : QDialog(parent), m_messages(messages)
{
    setObjectName(QStringLiteral("FormInputCheck"));
    setModal(true);
    setFont(dialogFont());
    setWindowTitle(qtTr(NumberInput::kDefaultTitle));

    m_lblmsg = label(QStringLiteral("lblmsg"), qtTr(NumberInput::kGuide), this);
    m_lblmsg->setWordWrap(true);
    m_txtInput = new QLineEdit(this);
    m_txtInput->setObjectName(QStringLiteral("txtInput"));
    m_txtInput->setAlignment(Qt::AlignRight);
    // Full-width digits from an input method would only fail the check later.
    m_txtInput->setAttribute(Qt::WA_InputMethodEnabled, false);
    m_txtInput->installEventFilter(this);
    m_cmdInc = new QToolButton(this);
    m_cmdInc->setObjectName(QStringLiteral("cmdInc"));
    m_cmdInc->setArrowType(Qt::UpArrow);
    m_cmdInc->setAutoRepeat(true);
    m_cmdDec = new QToolButton(this);
    m_cmdDec->setObjectName(QStringLiteral("cmdDec"));
    m_cmdDec->setArrowType(Qt::DownArrow);
    m_cmdDec->setAutoRepeat(true);
    for (QToolButton* b : {m_cmdInc, m_cmdDec})
        b->setFixedSize(28, 16);
    m_cmdEnter = new QPushButton(qtTr(NumberInput::kEnterCaption), this);
    m_cmdEnter->setObjectName(QStringLiteral("cmdEnter"));
    m_cmdEnter->setAutoDefault(false);
    m_cmdCancel = new QPushButton(qtTr(NumberInput::kCancelCaption), this);
    m_cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    m_cmdCancel->setAutoDefault(false);
    m_lblmaxv = label(QStringLiteral("lblmaxv"), QString(), this);
    m_lblminV = label(QStringLiteral("lblminV"), QString(), this);

    auto* steps = new QVBoxLayout;
    steps->setSpacing(2);
    steps->addWidget(m_cmdInc);
    steps->addWidget(m_cmdDec);
    auto* limits = new QGridLayout;
    limits->addWidget(label(QStringLiteral("lblmax"), qtTr(NumberInput::kMaxCaption), this), 0, 0);
    limits->addWidget(m_lblmaxv, 0, 1);
    limits->addWidget(label(QStringLiteral("lblmin"), qtTr(NumberInput::kMinCaption), this), 1, 0);
    limits->addWidget(m_lblminV, 1, 1);
    auto* entry = new QHBoxLayout;
    entry->addWidget(m_txtInput, 1);
    entry->addLayout(steps);
    entry->addSpacing(12);
    entry->addLayout(limits);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_cmdEnter);
    buttons->addWidget(m_cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_lblmsg);
    layout->addLayout(entry);
    layout->addLayout(buttons);
    setMinimumWidth(360);

    // Enter on a button is the model's too: it confirms on 決定.
    for (QWidget* button : std::initializer_list<QWidget*>{m_cmdInc, m_cmdDec, m_cmdEnter, m_cmdCancel})
        button->installEventFilter(this);

    connect(m_cmdInc, &QToolButton::clicked, this, &FormInputCheck::cmdInc_Click);
    connect(m_cmdDec, &QToolButton::clicked, this, &FormInputCheck::cmdDec_Click);
    connect(m_cmdEnter, &QPushButton::clicked, this, &FormInputCheck::cmdEnter_Click);
    connect(m_cmdCancel, &QPushButton::clicked, this, &FormInputCheck::cmdCancel_Click);
}

void FormInputCheck::prepare(const QString& limitA, const QString& limitB, double proposed, const QString& step,
                             const QString& prompt, const QString& title)
{
    m_input.open(coreText(limitA), coreText(limitB), proposed, coreText(step), coreText(prompt), coreText(title));
    // The dialog is kept between questions: its captions follow a change of language.
    m_cmdEnter->setText(qtTr(NumberInput::kEnterCaption));
    m_cmdCancel->setText(qtTr(NumberInput::kCancelCaption));
    findChild<QLabel*>(QStringLiteral("lblmax"))->setText(qtTr(NumberInput::kMaxCaption));
    findChild<QLabel*>(QStringLiteral("lblmin"))->setText(qtTr(NumberInput::kMinCaption));
    m_lblminV->setText(qtText(m_input.lowerText()));
    m_lblmaxv->setText(qtText(m_input.upperText()));
    m_lblmsg->setText(prompt);
    setWindowTitle(qtText(m_input.title()));
    m_txtInput->setText(qtText(m_input.text()));
    m_txtInput->selectAll();
    m_txtInput->setFocus();
}

double FormInputCheck::InputCheck(const QString& limitA, const QString& limitB, double proposed, const QString& step,
                                  const QString& prompt, const QString& title, QWidget* asker)
{
    prepare(limitA, limitB, proposed, step, prompt, title);
    placeOver(asker ? asker : parentWidget());
    exec();
    return m_input.result();
}

void FormInputCheck::placeOver(QWidget* asker)
{
    adjustSize();
    const QScreen* screen = asker ? asker->screen() : this->screen();
    const QRect work = screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
    std::optional<ViewRect> owner;
    if (asker && asker->isVisible()) {
        const QRect frame = asker->window()->frameGeometry();
        owner = ViewRect{frame.x(), frame.y(), frame.width(), frame.height()};
    }
    const ViewRect placed =
        tvx::placeOver(owner, width(), height(), {work.x(), work.y(), work.width(), work.height()});
    move(placed.x, placed.y);
}

bool FormInputCheck::enterPressed(QObject* watched)
{
    NumberInput::Focus focus = NumberInput::Focus::Input;
    if (watched == m_cmdEnter)
        focus = NumberInput::Focus::EnterButton;
    else if (watched == m_cmdCancel)
        focus = NumberInput::Focus::CancelButton;
    else if (watched == m_cmdInc || watched == m_cmdDec)
        focus = NumberInput::Focus::StepButton;
    switch (NumberInput::enterAction(focus)) {
    case NumberInput::EnterAction::FocusEnter:
        m_cmdEnter->setFocus(); // confirming stays a second, deliberate key press
        break;
    case NumberInput::EnterAction::Confirm:
        cmdEnter_Click();
        break;
    case NumberInput::EnterAction::Cancel:
        cmdCancel_Click();
        break;
    }
    return true;
}

bool FormInputCheck::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)
            return enterPressed(watched);
    }
    if (watched != m_txtInput)
        return QDialog::eventFilter(watched, event);
    if (event->type() == QEvent::FocusIn) {
        // After a click has placed the caret, so the whole text ends up selected.
        QTimer::singleShot(0, m_txtInput, &QLineEdit::selectAll);
    } else if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        // Leaving the dialog and moving the focus are not typing.
        if (key->key() == Qt::Key_Backspace || key->key() == Qt::Key_Delete || key->key() == Qt::Key_Escape ||
            key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab)
            return false;
        const QString text = key->text();
        if (text.isEmpty())
            return false; // caret movement and the like type nothing
        const QList<uint> typed = text.toUcs4();
        return typed.size() != 1 || NumberInput::filterKey(static_cast<char32_t>(typed.front())) != NumberInput::Key::Pass;
    }
    return QDialog::eventFilter(watched, event);
}

void FormInputCheck::warn(const NumberInput::Warning& warning)
{
    if (m_messages)
        m_messages->message(warning.text, warning.title);
    else
        showMessageBox(this, qtText(warning.text), qtText(warning.title));
}

void FormInputCheck::cmdInc_Click()
{
    m_input.setText(coreText(m_txtInput->text()));
    if (const auto warning = m_input.increment())
        warn(*warning);
    else
        m_txtInput->setText(qtText(m_input.text()));
}

void FormInputCheck::cmdDec_Click()
{
    m_input.setText(coreText(m_txtInput->text()));
    if (const auto warning = m_input.decrement())
        warn(*warning);
    else
        m_txtInput->setText(qtText(m_input.text()));
}

void FormInputCheck::cmdEnter_Click()
{
    m_input.setText(coreText(m_txtInput->text()));
    if (const auto warning = m_input.confirm()) {
        warn(*warning);
        if (warning->focusInput)
            m_txtInput->setFocus();
        return;
    }
    QDialog::accept();
}

void FormInputCheck::cmdCancel_Click()
{
    reject();
}

void FormInputCheck::reject()
{
    m_input.cancel();
    QDialog::reject();
}

void FormInputCheck::closeEvent(QCloseEvent* event)
{
    m_input.cancel();
    QDialog::closeEvent(event);
}

} // namespace tvx::ui
