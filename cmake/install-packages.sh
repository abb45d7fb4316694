#!/bin/sh
# Installs the system packages of packages.txt that are missing. Without root it says what to type.
set -eu
list=$(dirname "$0")/packages.txt
missing=
while read -r package; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing="$missing $package"
done <"$list"
[ -n "$missing" ] || exit 0
if [ "$(id -u)" -ne 0 ]; then
    echo "Packages are missing. Type: sudo apt-get install --no-install-recommends$missing" >&2
    exit 1
fi
echo "Installing:$missing"
export DEBIAN_FRONTEND=noninteractive
log=$(mktemp)
trap 'rm -f "$log"' EXIT
# shellcheck disable=SC2086  # a list of words
if ! { apt-get -qq update && apt-get -qq install -y --no-install-recommends $missing; } >"$log" 2>&1; then
    cat "$log" >&2
    exit 1
fi
