"""Projects and documents, which open with `with`."""

from __future__ import annotations

import os
from typing import TYPE_CHECKING

from . import runtime
from .late_binding import Unknown, create

if TYPE_CHECKING:
    from ._library import ITDReader


class Project(Unknown):
    """An open project, as `ExportExternalView` and `ImportExternalView` take it."""

    __slots__ = ("location",)

    def __init__(self, reference, location):
        super().__init__(reference)
        self.location = location

    def close(self) -> None:
        """Ends the use of the project's file. A second time does nothing."""
        self.release()


def open_project(location: str | os.PathLike[str]) -> Project:
    """Opens the project at a path. A failure says which file and why."""
    location = os.fspath(location)
    return Project(runtime.made(runtime.OpenProjectDatabase, runtime.wide(location),
                                source=f"opening {location}"), location)


def open_document(path: str | os.PathLike[str]) -> ITDReader:
    """An `ITDReader` on the bilingual document at a path."""
    reader = create("ITDReader")
    reader.OpenITDFile(os.fspath(path))
    return reader
