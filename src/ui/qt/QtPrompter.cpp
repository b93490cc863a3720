#include "QtPrompter.h"

#include "FormInputCheck.h"
#include "QtText.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>

namespace tvx::ui {
namespace {

QString boxText(const std::string& text)
{
    QString shown = qtText(text);
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return shown;
}

// The questions name their buttons 「はい」 and 「いいえ」, so the buttons must say so too.
QMessageBox::StandardButton ask(QWidget* parent, QMessageBox::Icon icon, const QString& text, const QString& title,
                                QMessageBox::StandardButtons buttons)
{
    QMessageBox box(icon, title, text, buttons, parent);
    const std::pair<QMessageBox::StandardButton, QString> captions[] = {
        {QMessageBox::Yes, qtText(tvx::tr("はい(&Y)"))},
        {QMessageBox::No, qtText(tvx::tr("いいえ(&N)"))},
        {QMessageBox::Ok, QStringLiteral("OK")},
        {QMessageBox::Cancel, qtText(tvx::tr("キャンセル"))},
    };
    for (const auto& [button, caption] : captions)
        if (QAbstractButton* b = box.button(button))
            b->setText(caption);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

} // namespace

void showMessageBox(QWidget* parent, const QString& text, const QString& title)
{
    QString shown = text;
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    ask(parent, QMessageBox::Information, shown, title, QMessageBox::Ok);
}

// The window that asked: the active one, else the prompter's parent.
static QWidget* asker(QWidget* parent)
{
    QWidget* active = QApplication::activeWindow();
    return active && active->isVisible() ? active : parent;
}

QtPrompter::QtPrompter(QWidget* parent) : m_parent(parent) {}

QtPrompter::~QtPrompter()
{
    delete m_input.data();
}

void QtPrompter::message(const std::string& text, const std::string& title)
{
    ask(asker(m_parent), QMessageBox::Information, boxText(text), qtText(title), QMessageBox::Ok);
}

bool QtPrompter::askYesNo(const std::string& text, const std::string& title)
{
    return ask(asker(m_parent), QMessageBox::Question, boxText(text), qtText(title), QMessageBox::Yes | QMessageBox::No) ==
           QMessageBox::Yes;
}

bool QtPrompter::askOkCancel(const std::string& text, const std::string& title)
{
    return ask(asker(m_parent), QMessageBox::Question, boxText(text), qtText(title), QMessageBox::Ok | QMessageBox::Cancel) ==
           QMessageBox::Ok;
}

double QtPrompter::askNumber(const std::string& limitA, const std::string& limitB, double proposed,
                             const std::string& step, const std::string& prompt, const std::string& title)
{
    if (!m_input)
        m_input = new FormInputCheck(this, m_parent);
    return m_input->InputCheck(qtText(limitA), qtText(limitB), proposed, qtText(step), qtText(prompt), qtText(title),
                               asker(m_parent));
}

} // namespace tvx::ui
