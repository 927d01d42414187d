#!/bin/sh
# Draws docs/images/exported-table.png and exported-page.png anew: a table of the sample project as a
# word processor shows it, and the page as a browser shows it.
# Needs what neither the build nor the tests need:
#   apt-get install libreoffice-writer-nogui poppler-utils fonts-symbola chromium
# Usage: tools/draw_exported_table.sh BUILD_FOLDER
set -eu
genutil=$1/cli/genutil
here=$(cd "$(dirname "$0")/.." && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

"$genutil" project create "$folder/sample.project" --codes "$here"/demo/handbook.csv "$here"/demo/po/*.po
"$genutil" export "$folder/sample.project" -o "$folder/table.rtf" --language fr-FR --color-all-rows
soffice --headless "-env:UserInstallation=file://$folder/profile" --convert-to pdf --outdir "$folder" \
    "$folder/table.rtf"
mkdir -p "$here/docs/images"
# The upper part of the page, without its margins.
pdftoppm -png -singlefile -r 130 -x 110 -y 115 -W 800 -H 640 "$folder/table.pdf" "$here/docs/images/exported-table"

"$genutil" project create "$folder/catalogues.project" --codes "$here"/demo/po/*.po
"$genutil" export "$folder/catalogues.project" -o "$folder/page.html" --language fr-FR --color-all-rows \
    --status-column --status-value
chromium --headless --no-sandbox --disable-gpu "--user-data-dir=$folder/browser" --hide-scrollbars \
    --window-size=800,270 "--screenshot=$here/docs/images/exported-page.png" "file://$folder/page.html"
