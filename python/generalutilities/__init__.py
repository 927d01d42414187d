"""The General Utilities library for Python.

    >>> import generalutilities
    >>> utils = generalutilities.create("StringUtils")
    >>> utils.ToUpper("straße")
    'STRASSE'

Classes, methods, properties, defaults and enumerations come from the library's type information
when they are first used: `help(type(utils))` tells what there is. docs/writing-a-client.md is the
guide.
"""

from .callbacks import comparison
from .command_line import UsageError, genutil
from .errors import ArgumentError, Error, ReleasedError
from .late_binding import Object, create, named_type
from .projects import Project, open_document, open_project

__all__ = ["ArgumentError", "Error", "Object", "Project", "ReleasedError", "UsageError", "comparison",
           "create", "genutil", "open_document", "open_project"]


def __getattr__(name):
    """Classes and enumerations of the library: `generalutilities.WordTypeEnum.qlnwtWord`."""
    if name.startswith("_"):
        raise AttributeError(name)
    return named_type(name)
