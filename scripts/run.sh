#!/usr/bin/env bash
# Installs what is missing, builds, and starts the Tarvel editor on the default
# car set (any arguments are passed on, e.g. a car set file to open).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
TARVEL_TARGETS="tarvel tarvel-cli" scripts/build.sh
if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
  exec build/src/app/tarvel "$@"
fi
echo "No display: starting the editor on a virtual X display (xvfb-run)." >&2
exec xvfb-run -a -s "-screen 0 1024x768x24" build/src/app/tarvel "$@"
