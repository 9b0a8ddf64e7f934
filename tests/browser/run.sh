#!/bin/sh
# run.sh EXECUTABLE [SCREENSHOT-FOLDER]: drives the program in a real Chromium, each test file on a
# fresh home. Ends with the line "browser: N passed, M failed".
set -eu
executable=$(realpath "$1")
shots=${2:-}
[ -z "$shots" ] || shots=$(realpath "$shots")
cd "$(dirname "$0")"
if [ ! -d node_modules/playwright-core ]; then
    npm install --no-package-lock --no-audit --no-fund --silent
fi
exec node main.mjs "$executable" "$shots"
