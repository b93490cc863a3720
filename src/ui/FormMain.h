#pragma once

#include <QMainWindow>

#include <string_view>

class QPlainTextEdit;

namespace tvx::ui {

// The main window: the account of the running session, the graph and the log box.
class FormMain : public QMainWindow {
    Q_OBJECT

public:
    explicit FormMain(std::string_view title, QWidget* parent = nullptr);

    QPlainTextEdit* txtLog() const { return m_txtLog; }

private:
    QPlainTextEdit* m_txtLog = nullptr;
};

} // namespace tvx::ui
