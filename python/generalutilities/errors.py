"""What a failing call becomes in Python."""

MESSAGES = {
    0x80004001: "not implemented",
    0x80004002: "the object has no such interface",
    0x80004003: "a pointer is missing",
    0x80004005: "unspecified failure",
    0x8000FFFF: "unexpected failure",
    0x8007000E: "out of memory",
    0x80070057: "an argument is out of range or of the wrong kind",
    0x80040111: "the class is not available",
    0x80040154: "the class is not registered",
    0x800401F3: "no class has this name",
    0x80020003: "no such member",
    0x80020004: "no such argument",
    0x80020005: "the value cannot be converted",
    0x80020006: "unknown name",
    0x80020009: "the method failed",
    0x8002000E: "wrong number of arguments",
    0x8002000F: "a required argument is missing",
    0x80029C4A: "the type library cannot be loaded",
}


class Error(Exception):
    """A failing status of the library.

    `status` is the 32-bit status as the enumerations of the type library have it, so negative;
    `description` and `source` are what was reported with it. Without a report the description says
    the status in words, and the source is the class and the method.
    """

    def __init__(self, status, description="", source=""):
        self.status = status
        code = status & 0xFFFFFFFF
        self.description = description or MESSAGES.get(code, "failure")
        self.source = source
        super().__init__(f"{source}: {self.description} (0x{code:08X})" if source
                         else f"{self.description} (0x{code:08X})")


class ArgumentError(Error, TypeError):
    """A value that the library does not take for an argument, or an argument too many or missing."""


class ReleasedError(ValueError):
    """An object that is used after it was released."""
