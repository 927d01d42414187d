#!/usr/bin/env bash
# Tries the completions that make_command_documents.py wrote: try_completions.sh FOLDER. Those for zsh
# and fish are tried where these shells are installed.
set -euo pipefail
cd "$1"

# shellcheck source=/dev/null
source ./genutil.bash
expect() {  # the line so far, word by word; the answers behind "="
    local words=() answers
    while [ "$1" != = ]; do words+=("$1"); shift; done
    shift
    COMP_WORDS=("${words[@]}") COMP_CWORD=$((${#words[@]} - 1)) COMPREPLY=()
    _genutil || true  # compopt wants a shell that completes
    answers=${COMPREPLY[*]}
    [ "$answers" = "$*" ] || { echo "bash, ${words[*]}: \"$answers\" instead of \"$*\"" >&2; exit 1; }
}
expect genutil impo = import
expect genutil text uppe = upper
expect genutil project create --templ = --template
expect genutil export --format h = html
expect genutil import _genu = _genutil  # a file

if command -v zsh >/dev/null; then
    zsh -n ./_genutil
fi
if command -v fish >/dev/null; then
    answer=$(fish -c 'source ./genutil.fish; complete -C "genutil text uppe"')
    [ "${answer%%$'\t'*}" = upper ] || { echo "fish: \"$answer\"" >&2; exit 1; }
fi
