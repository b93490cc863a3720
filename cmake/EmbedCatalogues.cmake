# Writes OUTPUT: the PO files of PO_DIR (en.po, ko.po) as byte arrays behind embeddedPo(), so
# both front ends and the command line carry the same catalogue without files beside them.
set(body "// Made at build time from the PO files; edit those instead.\n#include \"base/EmbeddedCatalogues.h\"\n\nnamespace tvx {\nnamespace {\n")
foreach(code en ko)
  file(READ "${PO_DIR}/${code}.po" hex HEX)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${hex}")
  string(APPEND body "constexpr char k_${code}[] = {\n    ${bytes}0};\n")
endforeach()
string(APPEND body "} // namespace\n\nstd::string_view embeddedPo(Language language)\n{\n    switch (language) {\n    case Language::English: return {k_en, sizeof k_en - 1};\n    case Language::Korean: return {k_ko, sizeof k_ko - 1};\n    default: return {};\n    }\n}\n\n} // namespace tvx\n")
file(WRITE "${OUTPUT}.new" "${body}")
file(COPY_FILE "${OUTPUT}.new" "${OUTPUT}" ONLY_IF_DIFFERENT)
