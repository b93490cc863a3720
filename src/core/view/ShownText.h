#pragma once

#include "base/Language.h"

#include <string_view>

namespace tvx {

// A fixed text of a window: its Japanese text is marked for the catalogue where it is defined
// (ShownText{N_("...")}) and looked up in the current language wherever it is shown, so a
// window built after a change of language shows the new one.
struct ShownText {
    const char* japanese = "";

    const char* c_str() const { return tr(japanese); }
    operator std::string_view() const { return tr(japanese); }
    bool empty() const { return *japanese == '\0'; }
};

} // namespace tvx
