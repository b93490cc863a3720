#include "QtLanguage.h"

#include "QtText.h"

#include "base/Language.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

#include <memory>

namespace tvx::ui {

void followQtLanguage()
{
    static std::unique_ptr<QTranslator> installed;
    if (installed) {
        QCoreApplication::removeTranslator(installed.get());
        installed.reset();
    }
    if (currentLanguage() == Language::English)
        return;
    auto translator = std::make_unique<QTranslator>();
    const QString name = QStringLiteral("qtbase_") + qtText(languageCode(currentLanguage()));
    if (translator->load(name, QLibraryInfo::path(QLibraryInfo::TranslationsPath)) &&
        QCoreApplication::installTranslator(translator.get()))
        installed = std::move(translator);
}

} // namespace tvx::ui
