#pragma once

#include "ports/Prompter.h"

#include <QPointer>
#include <QString>

class QWidget;

namespace tvx::ui {

class FormInputCheck;

// The prompter of the desktop program: modal message boxes with Japanese buttons, and the
// bounded number input dialog, kept and reused for every number.
class QtPrompter final : public Prompter {
public:
    explicit QtPrompter(QWidget* parent = nullptr);
    ~QtPrompter() override;

    void message(const std::string& text, const std::string& title) override;
    bool askYesNo(const std::string& text, const std::string& title) override;
    bool askOkCancel(const std::string& text, const std::string& title) override;
    double askNumber(const std::string& limitA, const std::string& limitB, double proposed, const std::string& step,
                     const std::string& prompt, const std::string& title) override;

private:
    QWidget* m_parent;
    QPointer<FormInputCheck> m_input;
};

// An OK message box; texts of several lines may be joined by CR LF.
void showMessageBox(QWidget* parent, const QString& text, const QString& title);

} // namespace tvx::ui
