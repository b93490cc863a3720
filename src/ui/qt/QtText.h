#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace tvx::ui {

// The core's texts are UTF-8.
inline QString qtText(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline std::string coreText(const QString& text)
{
    return text.toStdString();
}

} // namespace tvx::ui
