#!/bin/sh
# From a fresh Debian to a shop in the browser: installs what is missing, builds, prepares a sample
# business in ./demo and serves it in the foreground. Ctrl-C ends it; a second run goes on with the
# same business. QUILLMARSH_DEMO_PORT chooses another port than 1097.
set -eu
cd "$(dirname "$0")"
. scripts/packages.sh

# shellcheck disable=SC2086 # a list of words
need_packages $BUILD_PACKAGES
echo "Building Quillmarsh Stock Manager (the first time takes a few minutes) ..."
build release quillmarsh

demo=$PWD/demo
export XDG_DATA_HOME="$demo/data" XDG_CONFIG_HOME="$demo/config"
email=owner@example.com
port=${QUILLMARSH_DEMO_PORT:-1097}
mkdir -p "$demo"
if [ ! -s "$demo/password.txt" ]; then
    (umask 077 && od -An -N8 -tx1 /dev/urandom | tr -d ' \n' >"$demo/password.txt")
fi
if [ ! -e "$demo/ready" ]; then
    build/quillmarsh -installer --business "Harbour Lane Hardware" --admin "$email" \
        --password-stdin --port "$port" --web on --sample <"$demo/password.txt"
    touch "$demo/ready"
else
    build/quillmarsh -installer --port "$port" --web on >/dev/null
fi

cat <<TEXT

  Quillmarsh Stock Manager serves your sample shop at

      http://localhost:$port/

      E-mail:    $email
      Password:  $(cat "$demo/password.txt")

  It answers in about a second. Everything it keeps lies in ./demo. Ctrl-C stops it.

TEXT
exec build/quillmarsh -service
