#!/usr/bin/env bash
# The Linux package from cpack: its contents, metadata and dependencies; then, unpacked into a
# scratch root, the installed meter reads the installed practice target and writes only to its home.
#   deb-package.sh BUILD_DIR
set -uo pipefail
build=$(cd "$1" && pwd)
source=$(cd "$(dirname "$0")/../.." && pwd)
started=$SECONDS

work=$(mktemp -d "${TMPDIR:-/tmp}/tallivex-deb.XXXXXX")
root=$work/root
data=$work/data
home=$data/tallivex
pids=()
finish() {
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null; done
  wait 2>/dev/null
  rm -rf "$work"
}
trap finish EXIT

fail() {
  echo "FAILED: $*"
  [ -f "$home/debug.txt" ] && { echo "--- debug log"; grep -v '^　' "$home/debug.txt"; }
  exit 1
}
# eventually SECONDS COMMAND...: polls the command every 0.2 s until it succeeds.
eventually() {
  local end=$((SECONDS + $1)); shift
  until "$@"; do
    [ "$SECONDS" -lt "$end" ] || return 1
    sleep 0.2
  done
}
logged() { grep -qF -- "$1" "$home/debug.txt" 2>/dev/null; }

# The package.
(cd "$work" && cpack -G DEB --config "$build/CPackConfig.cmake" -B "$work/out" >"$work/cpack.log" 2>&1) ||
  { cat "$work/cpack.log"; fail "cpack -G DEB"; }
debs=("$work"/out/tallivex_*.deb)
[ -f "${debs[0]}" ] || fail "no tallivex_<version>_<arch>.deb"
deb=${debs[0]}
echo "$(basename "$deb"): $(stat -c %s "$deb") bytes"

listing=$(dpkg-deb -c "$deb" | awk '{print $NF}')
expected=(usr/bin/tallivex usr/bin/tallivex-cli usr/bin/tallivex-practice
  usr/share/applications/org.tallivex.Tallivex.desktop usr/share/metainfo/org.tallivex.Tallivex.metainfo.xml
  usr/share/doc/tallivex/copyright usr/share/doc/tallivex/changelog.gz
  usr/share/icons/hicolor/{48x48,128x128,256x256}/apps/org.tallivex.Tallivex.png)
# The Japanese documents and each translation's folder beside them.
for document in "$source"/docs/help/* "$source"/docs/help/*/*; do
  if [ -f "$document" ]; then expected+=("usr/share/tallivex/${document#"$source"/docs/help/}"); fi
done
for name in "${expected[@]}"; do
  grep -qxF "./$name" <<<"$listing" || fail "$name is not in the package"
done
# Nothing but programs in bin.
extra=$(grep '^\./usr/bin/.' <<<"$listing" | grep -vxE '\./usr/bin/tallivex(-cli|-practice)?')
[ -z "$extra" ] || fail "more than the programs in /usr/bin: $extra"

depends=$(dpkg-deb -f "$deb" Depends)
names=$(sed 's/ *([^)]*)//g; s/, */\n/g' <<<"$depends")
for package in libqt6core6 libqt6gui6 libqt6widgets6 libxcb1 libxcb-xinput0 libxcb-shm0 libasound2 libstdc++6 fonts-noto-cjk; do
  grep -qxF "$package" <<<"$names" || fail "Depends lacks $package: $depends"
done

dpkg-deb -x "$deb" "$root" || fail "dpkg-deb -x"
appstreamcli validate --no-net "$root/usr/share/metainfo/org.tallivex.Tallivex.metainfo.xml" >"$work/appstream.log" 2>&1 ||
  { cat "$work/appstream.log"; fail "appstreamcli validate"; }
desktop-file-validate "$root/usr/share/applications/org.tallivex.Tallivex.desktop" || fail "desktop-file-validate"
# Errors fail; warnings are shown.
lintian --tag-display-limit 0 "$deb" 2>&1 | grep -v 'root privileges' | tee "$work/lintian.log"
! grep -q '^E: ' "$work/lintian.log" || fail "lintian errors"

# The installed programs, with a home of their own: nothing from the build tree, the
# user's real folders or an earlier run.
export HOME=$work/home XDG_DATA_HOME=$data XDG_CONFIG_HOME=$work/config XDG_CACHE_HOME=$work/cache
export XDG_RUNTIME_DIR=$work/runtime
mkdir -p "$HOME" "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
bin=$root/usr/bin
find "$root" | sort >"$work/before"

displayFile=$work/display
Xvfb -displayfd 3 -screen 0 1760x1000x24 -nolisten tcp -noreset 3>"$displayFile" 2>/dev/null &
pids+=($!)
eventually 10 test -s "$displayFile" || fail "Xvfb did not start"
export DISPLAY=":$(head -n1 "$displayFile")"

# The defaults for a full-screen game, so no question waits at the meter's start; the
# command line finds the same per-user home.
"$bin/tallivex-cli" config defaults --fullscreen >/dev/null 2>&1 || fail "tallivex-cli config defaults"
[ -f "$home/TV2MConfig.ini" ] || fail "the command line did not keep its home in $home"

"$bin/tallivex" --interval 2 -qwindowgeometry 900x560+820+0 >"$work/meter.log" 2>&1 &
meter=$!
pids+=($meter)
eventually 20 logged "Resaizing Form" || fail "the installed meter did not start (home $home)"
logged "Execute Folder : $bin" || fail "not the installed meter"
eventually 20 xdotool search --onlyvisible --name '^Tallivex' >/dev/null || fail "no meter window"
# Started once the meter's window is up, the game window has the focus, as the game has
# it while one plays: the meter reads only then.
"$bin/tallivex-practice" --state-file "$work/state.txt" --level 50 --exp-per-second 1234 \
  --money-per-second 567 >/dev/null 2>&1 &
pids+=($!)

# The meter's hourly record file: a header, then a line per reading:
# month/day time level experience money ...; every record must be a state the target drew.
records() { cat "$home"/log/給与明細*.txt 2>/dev/null | tail -n +2 | grep -c .; }
recorded() { [ "$(records)" -ge "$1" ]; }
eventually 60 recorded 2 || fail "fewer than two records in $home/log"
drawn=$(awk '{print $4}' "$work/state.txt")
while read -r _ _ level _ money _; do
  [ "$level" = 50 ] || fail "record with level $level, the target shows 50"
  grep -qxF "${money//,/}" <<<"$drawn" || fail "record with money $money, which the target never drew"
done < <(cat "$home"/log/給与明細*.txt | tail -n +2 | grep .)

kill -TERM "$meter"
eventually 15 logged "End of the Program " || fail "no orderly end on SIGTERM"
wait "$meter" || fail "the meter ended with $?"
find "$root" | sort >"$work/after"
diff "$work/before" "$work/after" >/dev/null || fail "written beside the installed programs: $(comm -13 "$work/before" "$work/after")"
echo "the installed meter read the installed practice target ($(records) records in \$XDG_DATA_HOME/tallivex), $((SECONDS - started)) s"
