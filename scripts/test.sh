#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test: the normal build, then
# the core tests again under AddressSanitizer and UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh
export QT_QPA_PLATFORM=offscreen
status=0
echo "== Tests =="
ctest --test-dir build --output-on-failure -j2 || status=1
echo "== Core tests under the sanitizers =="
TARVEL_BUILD_DIR=build-asan scripts/build.sh -DTARVEL_SANITIZE=ON -DTARVEL_BUILD_APP=OFF -DTARVEL_BUILD_BENCH=OFF
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir build-asan -L core --output-on-failure -j2 || status=1
exit $status
