#pragma once

#include "PracticeSession.h"

#include <QImage>
#include <QTimer>
#include <QWidget>

namespace tvx::practice {

// The stand-in game window in Qt: draws what the session shows, forwards the timer and
// the keys to it.
class PracticeWindow : public QWidget {
    Q_OBJECT

public:
    explicit PracticeWindow(const PracticeOptions& options, QWidget* parent = nullptr);

    const CharacterState& state() const { return m_session.state(); }
    bool paused() const { return m_session.paused(); }

public slots:
    void tick();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    // Redraws at once and then notes the state, so a state line never comes before its picture.
    void redraw(PracticeSession::Redraw redraw);

    PracticeSession m_session;
    QImage m_scene;
    QTimer m_timer;
};

} // namespace tvx::practice
