#pragma once

#include "base/Language.h"

#include <QString>

#include <string>
#include <string_view>

namespace tvx::ui {

// The core's texts are UTF-8.
inline QString qtText(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// A text of the core's tables (Japanese, marked for the catalogue) in the current language.
inline QString qtTr(std::string_view japanese)
{
    return qtText(tvx::tr(japanese));
}

inline std::string coreText(const QString& text)
{
    return text.toStdString();
}

} // namespace tvx::ui
