#!/usr/bin/env bash
# Installs what is missing, builds, and runs Tarvel on the default car set.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh
out=${TMPDIR:-/tmp}/tarvel-default.GP2
build/src/cli/tarvel-cli new "$out"
build/src/cli/tarvel-cli dump "$out"
