#pragma once

// moc cannot parse the standard library's C++20 headers; it needs none of these types.
#ifndef Q_MOC_RUN
#include "meter/GestureListener.h"
#endif

#include <QObject>

class QSocketNotifier;

namespace tvx::ui {

// The gesture listener in Qt: the core's listener, with the source's descriptor watched
// while it is loaded where the source needs polling.
class FormDirectX : public QObject {
    Q_OBJECT

public:
    FormDirectX(Meter& meter, MouseButtonSource& source, DebugLog& log, Prompter& prompter, QObject* parent = nullptr);

    bool Form_Load() { return m_listener.Form_Load(); }
    void Form_Unload() { m_listener.Form_Unload(); }
    bool loaded() const { return m_listener.loaded(); }
    void followSetting() { m_listener.followSetting(); }

private:
    GestureListener m_listener;
    QSocketNotifier* m_notifier = nullptr;
};

} // namespace tvx::ui
