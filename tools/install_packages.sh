#!/usr/bin/env bash
# Installs the Debian packages of tools/debian-packages.txt, or of the lists that are given, that are
# missing; quiet when none is.
set -euo pipefail
[ $# -gt 0 ] || set -- "$(dirname "$0")/debian-packages.txt"
missing=()
while read -r package; do
    case "$package" in ''|'#'*) continue ;; esac
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
done < <(cat "$@")
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
echo "installing: ${missing[*]}"
"${as_root[@]}" apt-get update -qq
DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
