#!/bin/sh
# Builds the editor if needed, starts it under a virtual X server with a
# throw-away configuration and writes a screenshot to docs/screenshot.png.
# Usage: scripts/screenshot.sh [BUILD_DIR] [CAR_SET.GP2]
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build-app}
carset=${2:-}
if [ ! -x "$build/src/app/tarvel" ]; then
    cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
fi
ninja -C "$build" -j2 tarvel >/dev/null

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# A configured game folder whose release is known keeps the configuration
# dialog away; without one the dialog would cover the window.
game="$work/game"
if [ -x "$build/tests/make-test-game" ]; then
    "$build/tests/make-test-game" "$game" --release 0 >/dev/null
    printf '[Files]\nLocate GP2.EXE=%s/\n' "$game" >"$work/tarvel32.ini"
    # With the command-line tool at hand, show the synthetic game's teams.
    cli="$build/src/cli/tarvel-cli"
    if [ -z "$carset" ] && [ -x "$cli" ] && "$cli" new "$work/new.GP2" >/dev/null 2>&1 &&
        "$cli" game import "$game" "$work/new.GP2" -o "$work/GAME.GP2" --items 0 >/dev/null 2>&1; then
        carset="$work/GAME.GP2"
    fi
else
    printf '[Files]\nLocate GP2.EXE=X\n' >"$work/tarvel32.ini"
fi

cat >"$work/run.sh" <<INNER
#!/bin/sh
TARVEL_CONFIG="$work/tarvel32.ini" "$build/src/app/tarvel" $carset &
pid=\$!
sleep 3
import -window root "$root/docs/screenshot.png"
kill \$pid
INNER
chmod +x "$work/run.sh"
xvfb-run -a -s "-screen 0 660x520x24" "$work/run.sh"
echo "wrote $root/docs/screenshot.png"
