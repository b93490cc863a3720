#include "FormInputCheck.h"

#include "QtPrompter.h"
#include "QtText.h"

#include "ports/Prompter.h"

#include <QCloseEvent>
#include <QFontDatabase>
#include <QFontInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include <cmath>

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
    if (std::isfinite(value) && value == std::trunc(value) && std::fabs(value) < 1e15)
        return QString::number(static_cast<qint64>(value));
    return QString::number(value, 'g', 15);
}

FormInputCheck::FormInputCheck(Prompter* messages, QWidget* parent) : QDialog(parent), m_messages(messages)
{
    setObjectName(QStringLiteral("FormInputCheck"));
    setModal(true);
    setFont(dialogFont());
    setWindowTitle(QStringLiteral("パラメータ入力"));

    m_lblmsg = label(QStringLiteral("lblmsg"), QStringLiteral("インプットガイド"), this);
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
    m_cmdEnter = new QPushButton(QStringLiteral("決 定"), this);
    m_cmdEnter->setObjectName(QStringLiteral("cmdEnter"));
    m_cmdEnter->setAutoDefault(false);
    m_cmdCancel = new QPushButton(QStringLiteral("キャンセル"), this);
    m_cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    m_cmdCancel->setAutoDefault(false);
    m_lblmaxv = label(QStringLiteral("lblmaxv"), QString(), this);
    m_lblminV = label(QStringLiteral("lblminV"), QString(), this);

    auto* steps = new QVBoxLayout;
    steps->setSpacing(2);
    steps->addWidget(m_cmdInc);
    steps->addWidget(m_cmdDec);
    auto* limits = new QGridLayout;
    limits->addWidget(label(QStringLiteral("lblmax"), QStringLiteral("最大："), this), 0, 0);
    limits->addWidget(m_lblmaxv, 0, 1);
    limits->addWidget(label(QStringLiteral("lblmin"), QStringLiteral("最小："), this), 1, 0);
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

    connect(m_cmdInc, &QToolButton::clicked, this, &FormInputCheck::cmdInc_Click);
    connect(m_cmdDec, &QToolButton::clicked, this, &FormInputCheck::cmdDec_Click);
    connect(m_cmdEnter, &QPushButton::clicked, this, &FormInputCheck::cmdEnter_Click);
    connect(m_cmdCancel, &QPushButton::clicked, this, &FormInputCheck::cmdCancel_Click);
}

double FormInputCheck::numericValue(const QString& text)
{
    QString compact = text;
    compact.remove(QRegularExpression(QStringLiteral("[ \\t\\r\\n]")));
    static const QRegularExpression number(
        QStringLiteral("^[+-]?(?:[0-9]+\\.?[0-9]*|\\.[0-9]+)(?:[eE][+-]?[0-9]+)?"));
    const QRegularExpressionMatch match = number.match(compact);
    if (!match.hasMatch())
        return 0;
    bool ok = false;
    const double value = match.captured().toDouble(&ok);
    return ok ? value : 0;
}

bool FormInputCheck::passesCharacterCheck(const QString& text)
{
    // Character codes compared as decimal texts, not numbers: codes such as 5 or 500
    // sort between "48" and "57" and pass too.
    for (const char32_t code : text.toUcs4()) {
        const std::string digits = std::to_string(static_cast<std::uint32_t>(code));
        const bool passes = digits == "32" || digits == "45" || digits == "46" || digits == "69" ||
                            digits == "101" || (digits >= "48" && digits <= "57");
        if (!passes)
            return false;
    }
    return true;
}

void FormInputCheck::prepare(const QString& limitA, const QString& limitB, double proposed, const QString& step,
                             const QString& prompt, const QString& title)
{
    const double a = numericValue(limitA);
    const double b = numericValue(limitB);
    m_lower = std::min(a, b);
    m_upper = std::max(a, b);
    m_step = std::fabs(numericValue(step));
    m_result = kCancelled;
    m_done = false;
    m_lblminV->setText(formatNumber(m_lower));
    m_lblmaxv->setText(formatNumber(m_upper));
    m_lblmsg->setText(prompt);
    setWindowTitle(title.isEmpty() ? QStringLiteral("パラメータ入力") : title);
    m_txtInput->setText(formatNumber(proposed));
    m_txtInput->selectAll();
    m_txtInput->setFocus();
}

double FormInputCheck::InputCheck(const QString& limitA, const QString& limitB, double proposed, const QString& step,
                                  const QString& prompt, const QString& title)
{
    prepare(limitA, limitB, proposed, step, prompt, title);
    exec();
    return m_result;
}

bool FormInputCheck::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != m_txtInput)
        return QDialog::eventFilter(watched, event);
    if (event->type() == QEvent::FocusIn) {
        // After a click has placed the caret, so the whole text ends up selected.
        QTimer::singleShot(0, m_txtInput, &QLineEdit::selectAll);
    } else if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            m_cmdEnter->setFocus(); // confirming stays a second, deliberate key press
            return true;
        }
        // Leaving the dialog and moving the focus are not typing.
        if (key->key() == Qt::Key_Backspace || key->key() == Qt::Key_Delete || key->key() == Qt::Key_Escape ||
            key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab)
            return false;
        const QString text = key->text();
        if (text.isEmpty())
            return false; // caret movement and the like type nothing
        static const QString allowed = QStringLiteral("0123456789-.Ee");
        return !(text.size() == 1 && allowed.contains(text.front()));
    }
    return QDialog::eventFilter(watched, event);
}

void FormInputCheck::warn(const QString& text, const QString& title)
{
    if (m_messages)
        m_messages->message(coreText(text), coreText(title));
    else
        showMessageBox(this, text, title);
}

void FormInputCheck::cmdInc_Click()
{
    if (!passesCharacterCheck(m_txtInput->text())) {
        warn(QStringLiteral("無効文字が含まれています。"), QStringLiteral("入力チェック"));
        return;
    }
    m_txtInput->setText(formatNumber(std::min(numericValue(m_txtInput->text()) + m_step, m_upper)));
}

void FormInputCheck::cmdDec_Click()
{
    if (!passesCharacterCheck(m_txtInput->text())) {
        warn(QStringLiteral("無効文字が含まれています。"), QStringLiteral("入力チェック"));
        return;
    }
    m_txtInput->setText(formatNumber(std::max(numericValue(m_txtInput->text()) - m_step, m_lower)));
}

void FormInputCheck::cmdEnter_Click()
{
    if (!passesCharacterCheck(m_txtInput->text())) {
        warn(QStringLiteral("無効文字が含まれています。"), QStringLiteral("入力チェック"));
        return;
    }
    const double value = numericValue(m_txtInput->text());
    if (value < m_lower) {
        warn(QStringLiteral("入力下限を超えています"), QStringLiteral("入力エラー"));
        m_txtInput->setFocus();
        return;
    }
    if (value > m_upper) {
        warn(QStringLiteral("入力上限を超えています"), QStringLiteral("入力エラー"));
        m_txtInput->setFocus();
        return;
    }
    m_result = value;
    m_done = true;
    QDialog::accept();
}

void FormInputCheck::cmdCancel_Click()
{
    reject();
}

void FormInputCheck::finish(double result)
{
    m_result = result;
    m_done = true;
}

void FormInputCheck::reject()
{
    finish(kCancelled);
    QDialog::reject();
}

void FormInputCheck::closeEvent(QCloseEvent* event)
{
    finish(kCancelled);
    QDialog::closeEvent(event);
}

} // namespace tvx::ui
