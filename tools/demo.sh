#!/usr/bin/env bash
# The main job on real input: a project goes out to reviewers in ten languages and comes home.
# Usage: tools/demo.sh BUILD_FOLDER
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:?usage: tools/demo.sh BUILD_FOLDER}
genutil=$build/cli/genutil
out=$build/demo
languages=(fr-FR de-DE ru-RU el-GR ar-SA he-IL ja-JP zh-CN hi-IN th-TH)
project=$out/sample.project

heading() { printf '\n== %s\n' "$*"; }
# Runs a command that must end with the given exit code, and shows it.
expect() {
    local wanted=$1 code=0
    shift
    printf '$ %s\n' "${*/#$genutil/genutil}"
    "$@" || code=$?
    if [ "$code" -ne "$wanted" ]; then
        printf 'demo: expected exit code %s, got %s\n' "$wanted" "$code" >&2
        exit 1
    fi
}

rm -rf "$out"
mkdir -p "$out"

heading "A project from a table and gettext catalogues"
expect 0 "$genutil" project create "$project" --source en-US --codes --files-by-reference \
    demo/handbook.csv demo/po/*.po
expect 0 "$genutil" project info "$project"

heading "Equal rows once: what differs in numbers and codes alone is left out"
expect 0 "$genutil" export "$project" -o "$out/fr-FR-unique.rtf" --language fr-FR --unique-pairs

for language in "${languages[@]}"; do
    heading "$language: out to the reviewer"
    exported=$out/$language.rtf
    reviewed=$out/$language-reviewed.rtf
    expect 0 "$genutil" export "$project" -o "$exported" --language "$language" \
        --status-column --status-value --color-all-rows
    echo "The reviewer, in a word processor:"
    demo/edit_like_a_word_processor.py "$exported" "$reviewed" "$language"

    heading "$language: home again"
    # Exit code 1 of an import: a row that the reviewer typed in has no place in the project. Of
    # accept: a row lost a code, and what the code hides would be lost with it. Both are named.
    if [ "$language" = fr-FR ]; then
        expect 1 "$genutil" import "$project" "$reviewed" --language "$language" --dry-run
    fi
    expect 1 "$genutil" import "$project" "$reviewed" --language "$language" \
        --report-file "$out/$language-report.html"
    expect 0 "$genutil" review "$project" --language "$language"
    expect 1 "$genutil" accept "$project" --language "$language"
done

heading "A page for those who only read"
expect 0 "$genutil" export "$project" -o "$out/fr-FR.html" --language fr-FR --status-column --status-value

heading "A bilingual document: out, typed into, and home"
document=$out/de-DE-bilingual
expect 0 "$genutil" export "$project" -o "$document.rtf" --language de-DE --format twb --locked-is-perfect
echo "The reviewer types directly behind a mark, and the text takes the style of the mark:"
sed '/<ID 000002>/,/<0/ s/\\{>}$/\\{>Neu: }/' "$document.rtf" >"$document-reviewed.rtf"
diff "$document.rtf" "$document-reviewed.rtf" || true
expect 0 "$genutil" import "$project" "$document-reviewed.rtf" --language de-DE
expect 0 "$genutil" review "$project" --language de-DE
expect 0 "$genutil" accept "$project" --language de-DE

heading "The project afterwards"
expect 0 "$genutil" project info "$project"

heading "Bilingual documents: segments out to a translator, and translations into a copy"
tools/make_itd_samples.py "$out/itd" ja-JP de-DE
document=$out/itd/ja-JP.itd
expect 0 "$genutil" itd info "$document"
expect 0 "$genutil" itd segments "$document"
expect 0 "$genutil" itd extract "$document" -o "$out/itd/ja-JP.xlf"
echo "The translator, in a tool of their own: one wording changed, one code lost."
sed -e 's/ようこそ！/いらっしゃいませ。/' -e '/<target>/s/<ph id="3">&lt;\/key&gt;<\/ph>//' \
    "$out/itd/ja-JP.xlf" >"$out/itd/ja-JP-translated.xlf"
# Exit code 1: the row that lost a code is refused, and named.
expect 1 "$genutil" itd apply "$document" "$out/itd/ja-JP-translated.xlf" \
    -o "$out/itd/ja-JP-translated.itd"
expect 0 "$genutil" itd segments "$out/itd/ja-JP-translated.itd"

heading "Text in many scripts, drawn and measured"
for kind in png pdf svg; do
    expect 0 "$genutil" draw -o "$out/many-scripts.$kind" --size 20 --width 470 --file demo/many-scripts.txt
done
expect 0 "$genutil" draw --measure --size 20 --width 470 --file demo/many-scripts.txt

heading "What was made"
cat <<END
  $project
      the project, with what the reviewers returned taken over
  $out/LANGUAGE.rtf, LANGUAGE-reviewed.rtf
      the tables that went out and came back, for ${languages[*]}
  $out/fr-FR.html
      the same rows as a page
  $out/de-DE-bilingual.rtf, de-DE-bilingual-reviewed.rtf
      a bilingual document that went out and came back
  $out/LANGUAGE-report.html
      what became of every row of the reviewed tables, changes marked
  $out/itd/
      bilingual documents, one in XLIFF for a translator, and the document with its translations
  $out/many-scripts.png, .pdf, .svg
      text from right to left, with combining marks, and broken where there are no blanks
END
