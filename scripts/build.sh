#!/usr/bin/env bash
# Configures and builds Tarvel into build/ (or $TARVEL_BUILD_DIR).
set -euo pipefail
cd "$(dirname "$0")/.."
build_dir=${TARVEL_BUILD_DIR:-build}
werror=OFF
if [ -n "${CI:-}" ]; then werror=ON; fi
cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTARVEL_WERROR=$werror "$@" >/dev/null
cmake --build "$build_dir" ${TARVEL_TARGETS:+--target $TARVEL_TARGETS}
