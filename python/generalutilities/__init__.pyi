from ._library import *
from .callbacks import comparison as comparison
from .command_line import UsageError as UsageError, genutil as genutil
from .errors import ArgumentError as ArgumentError, Error as Error, ReleasedError as ReleasedError
from .late_binding import Object as Object
from .projects import Project as Project, open_document as open_document, open_project as open_project
