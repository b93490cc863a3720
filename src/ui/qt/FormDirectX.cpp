#include "FormDirectX.h"

#include "ports/MouseButtons.h"

#include <QSocketNotifier>

namespace tvx::ui {

FormDirectX::FormDirectX(Meter& meter, MouseButtonSource& source, DebugLog& log, Prompter& prompter, QObject* parent)
    : QObject(parent), m_listener(meter, source, log, prompter)
{
    setObjectName(QStringLiteral("FormDirectX"));
    m_listener.setLoadedChanged([this](bool loaded) {
        delete m_notifier;
        m_notifier = nullptr;
        const int descriptor = m_listener.source().pollDescriptor();
        if (loaded && descriptor >= 0) {
            m_notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, this);
            connect(m_notifier, &QSocketNotifier::activated, this, [this] { m_listener.source().poll(); });
        }
    });
}

} // namespace tvx::ui
