#pragma once

#include <QFont>

namespace tvx::ui {

// The log box's font: full-width characters exactly two columns, so the log lines align.
QFont logFont();

// Gives Japanese text everywhere the log box's CJK face. The CJK fonts come as one large
// collection file whose faces load separately; sharing one face keeps one of them (a few
// megabytes of font tables) out of memory. Latin text keeps the system font. Call once
// the application object exists, before any window is made.
void shareJapaneseFace();

} // namespace tvx::ui
