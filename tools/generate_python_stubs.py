#!/usr/bin/env python3
"""Writes the type stubs of the Python package: python/generalutilities/_library.pyi.

Classes, members, arguments and enumerations come from the type information of the built library, so
the library is asked and nothing is listed here; the words about them are the comments of the public
headers. Run it after a change of an interface or of its comments:

    GENERALUTILITIES_LIBRARY=build/release/lib/libGeneralUtilities.so tools/generate_python_stubs.py

With --check it only says whether the file is what would be written.
"""

import re
import sys
import textwrap
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "python"))
sys.dont_write_bytecode = True

from generalutilities import type_information  # noqa: E402
from generalutilities.type_information import (  # noqa: E402
    CLASS, ENUMERATION, GET, METHOD, NEW_ENUM, PUT, VALUE)

STUB = ROOT / "python/generalutilities/_library.pyi"
HEADERS = ROOT / "include/generalutilities/interfaces"

HEAD = '''\
# Written by tools/generate_python_stubs.py from the library's type information; do not edit.
"""The classes and enumerations of the library, for type checkers and editors. Where a method gives a
negative answer instead of a result, it gives None."""

from collections.abc import Callable, Iterator
from enum import IntEnum
from typing import Generic, Literal, TypeVar, overload

from .late_binding import Object

_Key = TypeVar("_Key")
_Item = TypeVar("_Item")

class IndexedProperty(Generic[_Key, _Item]):
    """A property with an argument: `o.Item(key)` and `o.Item[key]` read, `o.Item[key] = x` writes."""
    def __call__(self, key: _Key) -> _Item: ...
    def __getitem__(self, key: _Key) -> _Item: ...
    def __setitem__(self, key: _Key, item: _Item) -> None: ...
'''


def header_comments():
    """The comment before each interface and operation, by "IName" and "IName.Operation"."""
    comments = {}
    for path in sorted(HEADERS.glob("*.h")):
        interface, gathered = "", []
        for line in path.read_text(encoding="utf-8").splitlines():
            text = line.strip()
            struct = re.match(r"struct (\w+) : IDispatch", text)
            operation = re.match(r"virtual HRESULT (\w+)\(", text)
            if text.startswith("///"):
                gathered.append(text[3:].strip())
                continue
            if struct:
                interface = struct[1]
                comments[interface] = " ".join(filter(None, gathered))
            elif operation and gathered:
                comments[f"{interface}.{operation[1]}"] = " ".join(filter(None, gathered))
            gathered = []
    return comments


def docstring(text, indent):
    if not text:
        return " ..."
    text = text.replace("\\", "\\\\")
    quoted = '"""' + text + (' """' if text.endswith('"') else '"""')
    return "\n" + textwrap.fill(quoted, 100, initial_indent=indent, subsequent_indent=indent)


def members_of(interface, comments):
    """The members of an interface, as a class has them."""
    for name in dict.fromkeys(member.name for member in interface.members):
        kinds = {member.kind: member for member in interface.members if member.name == name}
        reader = kinds.get(METHOD) or kinds.get(GET)

        def words(prefix, name=name):
            return docstring(comments.get(f"{interface.name}.{prefix}{name}", ""), " " * 8)

        if reader and reader.id == NEW_ENUM:
            yield f"    def __iter__(self) -> Iterator[object]:{words('get_')}"
        elif name.startswith("_"):
            continue
        elif METHOD in kinds:
            yield f"    def {name}{kinds[METHOD].signature}:{words('')}"
        elif reader is None:
            value = kinds[PUT].parameters[-1].python_type
            yield f"    {name}: {value}  # can be written only"
        elif reader.parameters:
            key, item = reader.inputs[0].python_type, reader.result.python_type
            yield (f"    @property\n    def {name}(self) -> IndexedProperty[{key}, {item}]:"
                   f"{words('get_')}")
            if reader.id == VALUE:
                yield f"    def __getitem__(self, key: {key}) -> {item}: ..."
        else:
            item = reader.result.python_type
            yield f"    @property\n    def {name}(self) -> {item}:{words('get_')}"
            if PUT in kinds:
                yield (f"    @{name}.setter\n"
                       f"    def {name}(self, value: {item}) -> None:{words('put_')}")
            if name == "Count":
                yield "    def __len__(self) -> int: ..."


def events_of(interface):
    names = ", ".join(f'"{member.name}"' for member in interface.members)
    values = {", ".join(p.python_type for p in member.parameters) for member in interface.members}
    function = f"Callable[[{values.pop()}], object]" if len(values) == 1 else "Callable[..., object]"
    for name in ("on", "off"):
        yield f"    def {name}(self, event: Literal[{names}], function: {function}) -> None: ..."


def stub():
    comments = header_comments()
    types = type_information.types().values()
    parts = [HEAD]
    for one in types:
        if one.kind == ENUMERATION:
            lines = [f"    {name} = {value}" for name, value in one.variables.items()]
            parts.append("\n".join([f"class {one.name}(IntEnum):"] + lines) + "\n")
    classes = [one for one in types if one.kind == CLASS]
    for one in classes:
        default, *events = one.interfaces
        lines = [f"class {one.name}(Object):" + docstring(comments.get(default.name, ""), " " * 4)]
        lines += members_of(default, comments)
        lines += [line for interface in events for line in events_of(interface)]
        parts.append("\n".join(lines) + "\n")
    for one in classes:
        parts.append(f'@overload\ndef create(name: Literal["{one.name}"]) -> {one.name}: ...\n')
    parts.append("@overload\ndef create(name: str) -> Object: ...\n")
    return "\n".join(parts)


def main():
    text = stub()
    if "--check" in sys.argv:
        if not STUB.exists() or STUB.read_text(encoding="utf-8") != text:
            raise SystemExit(f"{STUB.relative_to(ROOT)} is stale: run tools/generate_python_stubs.py")
    else:
        STUB.write_text(text, encoding="utf-8")


main()
