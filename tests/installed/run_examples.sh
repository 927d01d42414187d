#!/usr/bin/env bash
# Runs the two examples one after the other, as a user would, and the pkg-config files as a Makefile
# would: run_examples.sh <built examples> <installed tree> <demo folder>
set -euo pipefail
examples=$1 installed=$2 demo=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

"$examples/make-project" "$demo/handbook.csv" handbook.project >made
grep -qx 'fr-FR: [1-9][0-9]* translated, [0-9]* empty' made
[ "$(wc -l <made)" -eq 14 ]  # counts, ten languages, three rows
"$examples/export-view" handbook.project fr.rtf >exported
diff - exported <<'EOF'
9 %
36 %
63 %
90 %
STRASSE: in code page 1252
ÅNGSTRÖM: in code page 1252
ΕΛΛΆΔΑ: not in code page 1252
EOF
grep -q 'Tous les ' fr.rtf
# A failure has words, its source, and an exit code.
if "$examples/export-view" missing.project x.rtf 2>failure; then exit 1; fi
grep -q '^export-view: .*missing.project.*(SQLite)$' failure
if "$examples/make-project" missing.csv x.project 2>failure; then exit 1; fi
grep -q 'missing.csv' failure

"$installed/bin/genutil" project info handbook.project | grep -q fr-FR  # finds its library by itself
PKG_CONFIG_PATH=$(dirname "$(find "$installed" -name generalutilities.pc)")
export PKG_CONFIG_PATH
for module in generalutilities generalutilities-core; do
    read -ra flags < <(pkg-config --cflags --libs "$module")
    for flag in "${flags[@]}"; do
        case $flag in
        -I*) [ -f "${flag#-I}/generalutilities/status.h" ] ;;
        -L*) [ -e "${flag#-L}/libGeneralUtilities.so" ] && [ -e "${flag#-L}/libgeneralutilities-core.a" ] ;;
        esac
    done
done
