#pragma once

#include "base/Language.h"

#include <string_view>

namespace tvx {

// The PO file of a language as it was when the program was built (po/LANG.po); empty for
// Japanese, which is the catalogue's keys.
std::string_view embeddedPo(Language language);

} // namespace tvx
