#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

namespace tvx {

// Japanese text (after its context and '\x04' where it has one) -> translation.
using Catalogue = std::unordered_map<std::string, std::string>;

// The entries of a gettext PO file: msgctxt, msgid and msgstr with their continuation lines
// and C escapes. Fuzzy entries, untranslated ones and the header are left out. On a line it cannot
// read, `error` says which and what is read so far is returned.
Catalogue parsePo(std::string_view text, std::string* error = nullptr);

} // namespace tvx
