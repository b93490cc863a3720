#pragma once

#include "ports/MouseButtons.h"

#include <QObject>

class QSocketNotifier;

namespace tvx {
class DebugLog;
class Meter;
class Prompter;
} // namespace tvx

namespace tvx::ui {

// The gesture listener: owns the background mouse-button source while gestures are on
// and hands every batch of button events to the meter's gesture matcher.
class FormDirectX : public QObject {
    Q_OBJECT

public:
    FormDirectX(Meter& meter, MouseButtonSource& source, DebugLog& log, Prompter& prompter, QObject* parent = nullptr);
    ~FormDirectX() override;

    // False when the mouse could not be opened; the player has been told and gestures stay off.
    bool Form_Load();
    void Form_Unload();
    bool loaded() const { return m_loaded; }

private:
    Meter& m_meter;
    MouseButtonSource& m_source;
    DebugLog& m_log;
    Prompter& m_prompter;
    QSocketNotifier* m_notifier = nullptr;
    bool m_loaded = false;
};

} // namespace tvx::ui
