#!/usr/bin/env python3
"""Makes the manual page of genutil and its completions for bash, zsh and fish.

All of it comes from what genutil-describe prints about the commands, so that none can be forgotten:
make_command_documents.py DESCRIPTION.json VERSION FOLDER writes genutil.1, genutil.bash, _genutil and
genutil.fish.
"""

import json
import pathlib
import re
import sys


def walk(command, path=()):
    """All commands with their paths: ("project", "create") for `genutil project create`."""
    yield path, command
    for below in command["commands"]:
        yield from walk(below, path + (below["name"],))


def choices(option):
    """The words that an option takes, where it takes no others."""
    listed = re.search(r"\{([^{}]*)\}", option["value"])
    return listed.group(1).split(",") if listed else []


def first_sentence(words):
    return words.split("\n")[0].split(". ")[0].rstrip(".")


# --- the manual page


def roff(text):
    """Text as roff shows it, character by character."""
    text = text.replace("\\", "\\e").replace("-", "\\-").replace("'", "\\(aq").replace("`", "\\(ga")
    return "\n".join("\\&" + line if line[:1] in (".", "\\") and line[:2] != "\\-" else line
                     for line in text.split("\n"))


def usage(path, command):
    words = ["genutil", *path]
    parts = [".B " + roff(" ".join(words))]
    if any(not option["positional"] for option in command["options"]):
        parts.append("[\\fIOPTIONS\\fR]")
    for option in command["options"]:
        if option["positional"]:
            shown = "\\fI" + roff(option["names"][0]) + "\\fR" + ("..." if option["many"] else "")
            parts.append(shown if option["required"] else "[" + shown + "]")
    if command["commands"]:
        parts.append("\\fICOMMAND\\fR")
    return "\n".join(parts)


def option_entry(option):
    value = re.sub(r"[^:]*:?(\{.*\})", r"\1", option["value"]) if choices(option) else option["value"]
    names = ", ".join("\\fB" + roff(name) + "\\fR" for name in option["names"])
    if value and not option["positional"]:
        names += " \\fI" + roff(value) + "\\fR"
    words = option["words"] + (f" [{option['default']}]" if option["default"] else "")
    return f".TP\n{names}\n{roff(words)}"


def manual_page(root, version):
    overview, _, examples = root["footer"].partition("\n\n")
    lines = [
        f'.TH GENUTIL 1 "" "genutil {version}" "General Utilities"',
        ".SH NAME",
        "genutil \\- " + roff(first_sentence(root["words"])),
        ".SH SYNOPSIS",
        usage((), root),
        ".SH DESCRIPTION",
        roff(overview),
        ".SH OPTIONS",
    ]
    lines += [option_entry(option) for option in root["options"]]
    lines.append(".SH COMMANDS")
    for path, command in walk(root):
        if not path or command["commands"]:
            continue
        lines += [".SS " + roff("genutil " + " ".join(path)), usage(path, command), ".PP",
                  roff(command["words"])]
        lines += [option_entry(option) for option in command["options"]
                  if "--help" not in option["names"]]
        if command["footer"]:
            lines += [".PP", ".nf", roff(command["footer"]), ".fi"]
    lines += [".SH EXAMPLES", ".nf", roff(examples), ".fi", ".SH SEE ALSO",
              "The manual in HTML, in", ".I /usr/share/doc/libgeneralutilities\\-dev/manual", ""]
    return "\n".join(lines)


# --- completions


def quoted(text):
    return "'" + text.replace("'", "'\\''") + "'"


def names_of(command):
    return [below["name"] for below in command["commands"]]


def options_of(command):
    return [name for option in command["options"] if not option["positional"]
            for name in option["names"]]


def takes_value(option):
    return not option["positional"] and option["value"] != ""


def bash(root):
    paths, words, values = [], [], []
    for path, command in walk(root):
        here = " ".join(path)
        if path:
            paths.append(quoted(here))
        words.append(f"        {quoted(here)}) words={quoted(' '.join(names_of(command)))}"
                     f" options={quoted(' '.join(options_of(command)))} ;;")
        for option in command["options"]:
            if takes_value(option):
                patterns = "|".join(quoted(f"{here}:{name}") for name in option["names"])
                values.append(f"        {patterns}) value={quoted(' '.join(choices(option)))} ;;")
    return f"""# bash completion for genutil, made from its commands
_genutil() {{
    local current=${{COMP_WORDS[COMP_CWORD]}} previous=${{COMP_WORDS[COMP_CWORD-1]}}
    local path='' word words='' options='' value='(none)'
    for word in "${{COMP_WORDS[@]:1:COMP_CWORD-1}}"; do
        case "${{path:+$path }}$word" in
        {"|".join(paths)}) path=${{path:+$path }}$word ;;
        esac
    done
    case $path in
{chr(10).join(words)}
    esac
    case $path:$previous in
{chr(10).join(values)}
    esac
    if [ "$value" != '(none)' ]; then
        words=$value
    elif [[ $current == -* ]]; then
        words=$options
    fi
    if [ -n "$words" ]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    else
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    fi
}}
complete -F _genutil genutil
"""


def zsh_words(text):
    return first_sentence(text).replace("\\", "").replace("[", "(").replace("]", ")").replace(":", " -")


def zsh_function(path, command):
    function = "_" + "_".join(("genutil", *path)).replace("-", "_")
    specifications = []
    for option in command["options"]:
        action = "_files" if not choices(option) else "(" + " ".join(choices(option)) + ")"
        if option["positional"]:
            place = "*" if option["many"] else ""
            specifications.append(quoted(f"{place}:{option['names'][0].lower()}:{action}"))
            continue
        for name in option["names"]:
            value = f":value:{action}" if takes_value(option) else ""
            many = "*" if option["many"] else ""
            specifications.append(quoted(f"{many}{name}[{zsh_words(option['words'])}]{value}"))
    lines = [f"{function}() {{"]
    if command["commands"]:
        lines += ["    local state", "    local -a commands=("]
        lines += [f"        {quoted(c['name'] + ':' + zsh_words(c['words']))}"
                  for c in command["commands"]]
        lines += ["    )", "    _arguments -C " + " ".join(specifications) +
                  " '1:command:->command' '*::argument:->argument'", "    case $state in",
                  "    command) _describe command commands ;;", "    argument) case $words[1] in"]
        lines += [f"        {c['name']}) {function}_{c['name'].replace('-', '_')} ;;"
                  for c in command["commands"]]
        lines += ["        esac ;;", "    esac"]
    else:
        lines.append("    _arguments " + " ".join(specifications))
    return "\n".join(lines + ["}", ""])


def zsh(root):
    functions = "\n".join(zsh_function(path, command) for path, command in walk(root))
    return f"#compdef genutil\n# made from the commands of genutil\n\n{functions}\n_genutil \"$@\"\n"


def fish(root):
    lines = ["# fish completion for genutil, made from its commands", "complete -c genutil -e"]
    for path, command in walk(root):
        names = " ".join(names_of(command))
        met = [f"__fish_seen_subcommand_from {name}" for name in path]
        condition = "; and ".join(met) or "true"
        leaf = condition + (f"; and not __fish_seen_subcommand_from {names}" if names else "")
        for below in command["commands"]:
            lines.append(f"complete -c genutil -f -n {quoted(leaf)} -a {below['name']}"
                         f" -d {quoted(first_sentence(below['words']))}")
        for option in command["options"]:
            if option["positional"]:
                continue
            flags = " ".join(f"-l {name[2:]}" if name.startswith("--") else f"-s {name[1:]}"
                             for name in option["names"])
            value = ""
            if takes_value(option):
                listed = choices(option)
                value = f" -x -a {quoted(' '.join(listed))}" if listed else " -r"
            lines.append(f"complete -c genutil -n {quoted(leaf)} {flags}{value}"
                         f" -d {quoted(first_sentence(option['words']))}")
    return "\n".join(lines) + "\n"


def main():
    description, version, folder = sys.argv[1:]
    root = json.loads(pathlib.Path(description).read_text(encoding="utf-8"))
    target = pathlib.Path(folder)
    target.mkdir(parents=True, exist_ok=True)
    for name, text in (("genutil.1", manual_page(root, version)), ("genutil.bash", bash(root)),
                       ("_genutil", zsh(root)), ("genutil.fish", fish(root))):
        (target / name).write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main()
