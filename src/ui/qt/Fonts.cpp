#include "Fonts.h"

#include <QApplication>
#include <QStringList>

namespace tvx::ui {
namespace {

// Windows has MS Gothic; elsewhere the monospaced face of the Noto CJK collection.
const QStringList& japaneseMonospaced()
{
    static const QStringList families{QStringLiteral("MS Gothic"), QStringLiteral("Noto Sans Mono CJK JP")};
    return families;
}

} // namespace

QFont logFont()
{
    QFont font;
    font.setFamilies(japaneseMonospaced() + QStringList{QStringLiteral("Noto Mono"), QStringLiteral("DejaVu Sans Mono")});
    font.setStyleHint(QFont::Monospace);
    font.setPointSize(9);
    return font;
}

void shareJapaneseFace()
{
    QFont font = QApplication::font();
    font.setFamilies(QStringList{font.family()} + japaneseMonospaced());
    QApplication::setFont(font);
}

} // namespace tvx::ui
