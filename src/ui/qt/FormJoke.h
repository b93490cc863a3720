#pragma once

#include "view/JokePopup.h"

#include <QDialog>

class QLabel;
class QPushButton;

namespace tvx::ui {

// The joke popup over the version window: it draws the core's JokePopup and hands it every
// attempt to close it (Escape, the close box, Alt+F4 and its button all end in reject()).
class FormJoke : public QDialog {
    Q_OBJECT

public:
    explicit FormJoke(QWidget* parent = nullptr);

    // Plays the script from its first line; returns once the popup has let go.
    void run();

    void reject() override;

private:
    void draw();

    JokePopup m_popup;
    QLabel* m_lblMessage;
    QPushButton* m_cmdClose;
};

} // namespace tvx::ui
