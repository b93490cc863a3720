#pragma once

#include "PracticeCharacter.h"
#include "PracticeOptions.h"

#include "config/Settings.h"

#include <QImage>
#include <QTimer>
#include <QWidget>

namespace tvx::practice {

// The stand-in game window: paints the scene for the character, lets the timer raise its
// experience and money, and takes the practice keys.
class PracticeWindow : public QWidget {
    Q_OBJECT

public:
    explicit PracticeWindow(const PracticeOptions& options, QWidget* parent = nullptr);

    const CharacterState& state() const { return m_character.state(); }
    bool paused() const { return m_paused; }

    // The hint line drawn at the top of the scene.
    static QString hintText(bool paused);

public slots:
    void tick();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    // Redraws at once and then notes the state, so a state line never comes before its picture.
    void showState();
    void appendStateLine() const;

    PracticeOptions m_options;
    Settings m_settings;
    PracticeCharacter m_character;
    CharacterState m_shown;
    QImage m_scene;
    QTimer m_timer;
    bool m_paused = false;
};

} // namespace tvx::practice
