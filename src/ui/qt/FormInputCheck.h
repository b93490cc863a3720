#pragma once

#include "view/NumberInput.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;
class QToolButton;

namespace tvx {
class Prompter;
}

namespace tvx::ui {

// The bounded number input: a prompt, the limits, up and down buttons, a key filter and
// checks on confirmation, as the core's NumberInput decides them. Cancel and close answer
// 19999, so that value cannot be entered.
class FormInputCheck : public QDialog {
    Q_OBJECT

public:
    static constexpr double kCancelled = 19999;

    // messages receives the dialog's own warnings; null shows them in message boxes.
    explicit FormInputCheck(Prompter* messages = nullptr, QWidget* parent = nullptr);

    // Limits in either order and the step may be numbers or numeric texts. Opens over
    // asker (the parent when null) and blocks until the player confirms or cancels;
    // returns the value or 19999.
    double InputCheck(const QString& limitA, const QString& limitB, double proposed, const QString& step,
                      const QString& prompt, const QString& title, QWidget* asker = nullptr);

    // The opening half of InputCheck, without the modal loop (tests show the dialog themselves).
    void prepare(const QString& limitA, const QString& limitB, double proposed, const QString& step,
                 const QString& prompt, const QString& title);

    void reject() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void cmdInc_Click();
    void cmdDec_Click();
    void cmdEnter_Click();
    void cmdCancel_Click();
    bool enterPressed(QObject* watched);
    void placeOver(QWidget* asker);
    void warn(const NumberInput::Warning& warning);

    Prompter* m_messages;
    QLineEdit* m_txtInput;
    QToolButton* m_cmdInc;
    QToolButton* m_cmdDec;
    QPushButton* m_cmdEnter;
    QPushButton* m_cmdCancel;
    QLabel* m_lblmsg;
    QLabel* m_lblmaxv;
    QLabel* m_lblminV;
    NumberInput m_input;
};

// How the dialogs write a number: integers without a fraction or exponent.
QString formatNumber(double value);

} // namespace tvx::ui
