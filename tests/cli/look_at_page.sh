#!/usr/bin/env bash
# An exported page as a browser shows it: the text of each cell, the colour behind it, and its font.
set -euo pipefail
if ! command -v chromium >/dev/null; then
    echo 'no chromium: the page is not looked at in a browser'
    exit 77
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
printf '%s\n' 'id,source,target:ar-SA,status:ar-SA,comment:ar-SA' \
    $'1,"a  <b> &amp; {1}\ttab",مرحبا   (1),locked,"<script>x</script>"' \
    $'2,"two\nlines",𠮷 é,fuzzy,' >cells.csv
genutil project create cells.project cells.csv --source en-US
genutil export cells.project -o page.html -l ar-SA --color-locked '#102030' --status-column \
    --status-value --target-font 'DejaVu Serif'
# The browser is to tell in plain ASCII, a cell a line, what it has made of the page.
cat >>page.html <<'EOS'
<script>
    const cells = [...document.querySelectorAll('td')].map(cell => {
        const text = cell.querySelector('p');
        return [text.innerText, getComputedStyle(cell).backgroundColor,
                getComputedStyle(text).fontFamily].join('|').replace(/[^ -~]|[<>&]/g,
            c => '\\u' + c.charCodeAt(0).toString(16).padStart(4, '0'));
    });
    document.documentElement.innerHTML = '[' + cells.join('\n') + ']';
</script>
EOS
chromium --headless --no-sandbox --disable-gpu --user-data-dir="$work/browser" --dump-dom \
    "file://$work/page.html" | sed -n '/\[/,/\]/p' | sed 's/.*\[//; s/\].*//' | diff - "$1"
