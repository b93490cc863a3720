#!/bin/sh
# Gathers the texts marked in the code (tr, trFormat, N_, NC_) into po/tallivex.pot and brings
# po/en.po and po/ko.po up to date with it; new texts come in untranslated, for a translator
# to fill in (any PO editor does), and texts no longer used are kept as obsolete.
#   po/update.sh           update the template and the translations
#   po/update.sh --check   only check: exit 1 when a text has no translation
set -eu
cd "$(dirname "$0")/.."
pot=${TMPDIR:-/tmp}/tallivex-$$.pot
trap 'rm -f "$pot"' EXIT
git ls-files 'src/*.cpp' 'src/*.h' 2>/dev/null | sort > "$pot.files" || find src -name '*.cpp' -o -name '*.h' | sort > "$pot.files"
xgettext --from-code=UTF-8 --language=C++ --keyword= --keyword=tr --keyword=N_ --keyword=NC_:1c,2 --keyword=trFormat:1 \
  --flag=trFormat:1:qt-format --add-location=file --sort-by-file --package-name=Tallivex \
  --msgid-bugs-address=none --force-po --files-from="$pot.files" --output="$pot"
rm -f "$pot.files"
status=0
for po in po/en.po po/ko.po; do
  if [ "${1:-}" = --check ]; then
    msgfmt --check --output-file=/dev/null "$po" || status=1
    msgcmp "$po" "$pot" || { echo "$po: texts above have no translation" >&2; status=1; }
  else
    msgmerge --quiet --update --backup=none --no-fuzzy-matching "$po" "$pot"
  fi
done
[ "${1:-}" = --check ] || cp "$pot" po/tallivex.pot
exit $status
