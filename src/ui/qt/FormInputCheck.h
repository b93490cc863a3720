#pragma once

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
// checks on confirmation. Cancel and close answer 19999, so that value cannot be entered.
class FormInputCheck : public QDialog {
    Q_OBJECT

public:
    static constexpr double kCancelled = 19999;

    // messages receives the dialog's own warnings; null shows them in message boxes.
    explicit FormInputCheck(Prompter* messages = nullptr, QWidget* parent = nullptr);

    // Limits in either order and the step may be numbers or numeric texts. Blocks until
    // the player confirms or cancels; returns the value or 19999.
    double InputCheck(const QString& limitA, const QString& limitB, double proposed, const QString& step,
                      const QString& prompt, const QString& title);

    // The opening half of InputCheck, without the modal loop (tests show the dialog themselves).
    void prepare(const QString& limitA, const QString& limitB, double proposed, const QString& step,
                 const QString& prompt, const QString& title);

    double result() const { return m_result; }
    bool isDone() const { return m_done; }
    double lowerLimit() const { return m_lower; }
    double upperLimit() const { return m_upper; }

    // The numeric value of a text as the dialog reads it: blanks ignored, the longest
    // leading number taken (so "1E3" is 1000 and "12x" is 12), 0 when there is none.
    static double numericValue(const QString& text);
    // The textual character check; true when every character passes.
    static bool passesCharacterCheck(const QString& text);

    void reject() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void cmdInc_Click();
    void cmdDec_Click();
    void cmdEnter_Click();
    void cmdCancel_Click();
    void warn(const QString& text, const QString& title);
    void finish(double result);

    Prompter* m_messages;
    QLineEdit* m_txtInput;
    QToolButton* m_cmdInc;
    QToolButton* m_cmdDec;
    QPushButton* m_cmdEnter;
    QPushButton* m_cmdCancel;
    QLabel* m_lblmsg;
    QLabel* m_lblmaxv;
    QLabel* m_lblminV;
    double m_lower = 0;
    double m_upper = 0;
    double m_step = 1;
    double m_result = kCancelled;
    bool m_done = false;
};

// How the dialogs write a number: integers without a fraction or exponent.
QString formatNumber(double value);

} // namespace tvx::ui
