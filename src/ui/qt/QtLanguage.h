#pragma once

namespace tvx::ui {

// Qt's own texts (file dialogs, standard buttons, edit menus) in the current language,
// from the system's Qt translations where they are installed; English is Qt's own.
void followQtLanguage();

} // namespace tvx::ui
