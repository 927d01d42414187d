#!/usr/bin/env python3
"""Makes the manual in HTML: README.md, docs/*.md and the manual page of genutil, linked together.

make_manual.py --cmark PROGRAM --mandoc PROGRAM SOURCES GENUTIL.1 FOLDER
A link between pages that leads nowhere stops it.
"""

import argparse
import html
import pathlib
import re
import shutil
import subprocess
import sys

STYLE = """body { font: 16px/1.5 sans-serif; max-width: 52rem; margin: 2rem auto; padding: 0 1rem }
nav { font-size: 14px; border-bottom: 1px solid #ccc; padding-bottom: .5rem }
pre { background: #f4f4f4; padding: .7rem; overflow-x: auto } code { background: #f4f4f4 }
table { border-collapse: collapse } td, th { border: 1px solid #ccc; padding: .2rem .6rem;
vertical-align: top; text-align: left } img { max-width: 100% }"""


def page(title, navigation, body):
    return (f'<!DOCTYPE html>\n<html lang="en">\n<head>\n<meta charset="utf-8">\n'
            f"<title>{html.escape(title)}</title>\n<style>\n{STYLE}\n</style>\n</head>\n<body>\n"
            f"<nav>{navigation}</nav>\n{body}</body>\n</html>\n")


def anchors(body):
    """Headings get the identifiers by which links call them."""
    def with_identifier(match):
        words = re.sub(r"<[^>]*>", "", match.group(2))
        identifier = re.sub(r"[^\w\- ]", "", html.unescape(words).lower()).replace(" ", "-")
        return f'<h{match.group(1)} id="{identifier}">{match.group(2)}</h{match.group(1)}>'
    return re.sub(r"<h([1-6])>(.*?)</h\1>", with_identifier, body, flags=re.S)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--cmark", required=True)
    parser.add_argument("--mandoc", required=True)
    parser.add_argument("sources", type=pathlib.Path)
    parser.add_argument("manual_page")
    parser.add_argument("folder", type=pathlib.Path)
    arguments = parser.parse_args()
    sources, folder = arguments.sources, arguments.folder
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)

    files = [sources / name for name in ("README.md", "ARCHITECTURE.md", "CONTRIBUTING.md",
                                         "CHANGELOG.md")] + sorted((sources / "docs").glob("*.md"))
    names = {file: "index.html" if file.name == "README.md" else file.stem.lower() + ".html"
             for file in files}
    titles = {file: re.search(r"^# (.*)$", file.read_text(encoding="utf-8"), re.M).group(1)
              for file in files}
    navigation = " · ".join(f'<a href="{names[file]}">{html.escape(titles[file])}</a>'
                            for file in files) + ' · <a href="genutil.1.html">genutil(1)</a>'
    broken = []

    def target(file, link):
        path, _, place = link.partition("#")
        if re.match(r"[a-z]+:", link) or not path:
            return link
        there = (file.parent / path).resolve()
        if there in names:
            return names[there] + ("#" + place if place else "")
        if there.is_file() and there.suffix in (".png", ".svg"):
            shutil.copy(there, folder / there.name)
            return there.name
        if not there.exists():
            broken.append(f"{file.name}: {link}")
        return link

    for file in files:
        body = subprocess.run([arguments.cmark, "-e", "table", "--unsafe", file], check=True,
                              capture_output=True, text=True).stdout
        body = re.sub(r'(href|src)="([^"]*)"',
                      lambda match: f'{match.group(1)}="{target(file, match.group(2))}"', body)
        (folder / names[file]).write_text(page(titles[file], navigation, anchors(body)),
                                          encoding="utf-8")
    command = subprocess.run([arguments.mandoc, "-T", "html", "-O", "fragment",
                              arguments.manual_page], check=True, capture_output=True,
                             text=True).stdout
    (folder / "genutil.1.html").write_text(page("genutil(1)", navigation, command), encoding="utf-8")
    for link in broken:
        print(f"{link}: no such file", file=sys.stderr)
    return 1 if broken else 0


if __name__ == "__main__":
    sys.exit(main())
