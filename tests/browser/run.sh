#!/bin/sh
# run.sh EXECUTABLE [SCREENSHOT-FOLDER]: drives the program in a real Chromium, each test file on a
# fresh home. Ends with the line "browser: N passed, M failed".
set -eu
executable=$(realpath "$1")
shots=${2:-}
[ -z "$shots" ] || shots=$(realpath "$shots")
cd "$(dirname "$0")"
isInstalled() {  # NAME, in the version that package.json asks for
    wanted=$(sed -n "s/.*\"$1\": \"\(.*\)\".*/\1/p" package.json)
    grep -qs "\"version\": \"$wanted\"" "node_modules/$1/package.json"
}
if ! isInstalled playwright-core || ! isInstalled axe-core; then
    npm install --no-package-lock --no-audit --no-fund --loglevel=error >&2 || {
        echo "run.sh: npm could not fetch what the browser tests need" >&2
        exit 1
    }
fi
exec node main.mjs "$executable" "$shots"
