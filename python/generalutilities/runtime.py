"""The shared library: where it is found, its exported functions, and operations of interfaces.

An interface is an address here. It points to an object whose first word points to a table of
functions; `Operation` calls one of them by its place.
"""

import ctypes
import os
import sys
import uuid
from ctypes import c_char_p, c_int32, c_size_t, c_uint16, c_uint32, c_void_p
from pathlib import Path

from .errors import Error

ENVIRONMENT_VARIABLE = "GENERALUTILITIES_LIBRARY"
FILE_NAMES = ("libGeneralUtilities.so.1", "libGeneralUtilities.so")


def _load():
    """The environment variable decides alone; else the folder of the package, then the loader."""
    chosen = os.environ.get(ENVIRONMENT_VARIABLE)
    if chosen:
        # The program may go to another folder later.
        candidates = [os.path.abspath(chosen) if os.sep in chosen else chosen]
    else:
        beside = [Path(__file__).with_name(name) for name in FILE_NAMES]
        candidates = [str(path) for path in beside if path.exists()] or list(FILE_NAMES)
    failures = []
    for path in candidates:
        try:
            return ctypes.CDLL(path)
        except OSError as error:
            failures.append(str(error))
    raise ImportError(f"{failures[0]}; set {ENVIRONMENT_VARIABLE} to the path of {FILE_NAMES[0]}, put "
                      f"it into {Path(__file__).parent}, or install it for the loader")


library = _load()


def _function(name, result, *arguments):
    function = getattr(library, name)
    function.restype = result
    function.argtypes = arguments
    return function


SysAllocStringLen = _function("SysAllocStringLen", c_void_p, c_char_p, c_uint32)
SysAllocStringByteLen = _function("SysAllocStringByteLen", c_void_p, c_char_p, c_uint32)
SysFreeString = _function("SysFreeString", None, c_void_p)
SysStringByteLen = _function("SysStringByteLen", c_uint32, c_void_p)
VariantClear = _function("VariantClear", c_int32, c_void_p)
VariantCopyInd = _function("VariantCopyInd", c_int32, c_void_p, c_void_p)
VariantChangeType = _function("VariantChangeType", c_int32, c_void_p, c_void_p, c_uint16, c_uint16)
SafeArrayCreateVector = _function("SafeArrayCreateVector", c_void_p, c_uint16, c_int32, c_uint32)
SafeArrayDestroy = _function("SafeArrayDestroy", c_int32, c_void_p)
SafeArrayGetDim = _function("SafeArrayGetDim", c_uint32, c_void_p)
SafeArrayGetLBound = _function("SafeArrayGetLBound", c_int32, c_void_p, c_uint32, c_void_p)
SafeArrayGetUBound = _function("SafeArrayGetUBound", c_int32, c_void_p, c_uint32, c_void_p)
SafeArrayGetVartype = _function("SafeArrayGetVartype", c_int32, c_void_p, c_void_p)
SafeArrayAccessData = _function("SafeArrayAccessData", c_int32, c_void_p, c_void_p)
SafeArrayUnaccessData = _function("SafeArrayUnaccessData", c_int32, c_void_p)
CoCreateInstance = _function("CoCreateInstance", c_int32, c_char_p, c_void_p, c_uint32, c_char_p,
                             c_void_p)
CLSIDFromProgID = _function("CLSIDFromProgID", c_int32, c_char_p, c_void_p)
GetErrorInfo = _function("GetErrorInfo", c_int32, c_uint32, c_void_p)
SetErrorInfo = _function("SetErrorInfo", c_int32, c_uint32, c_void_p)
LoadTypeLib = _function("LoadTypeLib", c_int32, c_char_p, c_void_p)
HandleFromPointer = _function("HandleFromPointer", c_int32, c_void_p)
ReleaseHandle = _function("ReleaseHandle", None, c_int32)
OpenProjectDatabase = _function("OpenProjectDatabase", c_int32, c_char_p, c_void_p)


def guid(text):
    """The 16 bytes of an identifier."""
    return uuid.UUID(text).bytes_le


NO_IID = bytes(16)
IID_IUnknown = guid("{00000000-0000-0000-C000-000000000046}")
IID_IDispatch = guid("{00020400-0000-0000-C000-000000000046}")
IID_IEnumVARIANT = guid("{00020404-0000-0000-C000-000000000046}")


class Operation:
    """One operation of an interface, by its place in the table of operations."""

    def __init__(self, place, *arguments, result=c_int32):
        self.offset = place * ctypes.sizeof(c_void_p)
        self.prototype = ctypes.CFUNCTYPE(result, c_void_p, *arguments)

    def of(self, interface):
        """The operation as a function, which takes the interface first."""
        table = c_void_p.from_address(interface).value
        return self.prototype(c_void_p.from_address(table + self.offset).value)

    def __call__(self, interface, *arguments):
        return self.of(interface)(interface, *arguments)


_query_interface = Operation(0, c_char_p, c_void_p)
_add_ref = Operation(1, result=c_uint32)
_release = Operation(2, result=c_uint32)


class Reference(int):
    """The address of an interface, with one reference that is given back when this goes.

    A call in progress holds it too, so that an object which is released from inside its own call
    lives until the call ends.
    """

    def __del__(self):
        if not sys.is_finalizing():
            _release(self)


def add_reference(interface):
    """Adds a reference for whoever the address is given to."""
    _add_ref(interface)
    return interface


def query(interface, iid):
    """The object under another interface, or None."""
    found = c_void_p()
    if _query_interface(interface, iid, ctypes.byref(found)) < 0 or not found.value:
        return None
    return Reference(found.value)


def allocate_string(text):
    """A new BSTR. Unpaired surrogates go through as the units that they are."""
    units = text.encode("utf-16-le", "surrogatepass")
    string = SysAllocStringLen(units, len(units) // 2)
    if string is None:
        raise MemoryError
    return string


def wide(text):
    """A text for a function that reads up to the first zero unit."""
    if "\0" in text:
        raise ValueError(f"{text!r} holds a zero unit")
    return (text + "\0").encode("utf-16-le", "surrogatepass")


def read_string(string):
    """The text of a BSTR; null is empty. An odd number of bytes is no text and comes as bytes."""
    if not string:
        return ""
    content = ctypes.string_at(string, SysStringByteLen(string))
    return content if len(content) % 2 else content.decode("utf-16-le", "surrogatepass")


def take_string(string):
    """Like `read_string`, and frees the BSTR."""
    text = read_string(string)
    SysFreeString(string)
    return text


_error_source = Operation(4, c_void_p)
_error_description = Operation(5, c_void_p)


def check(status, source=""):
    """Raises `Error` for a failing status, with the words that the thread's error object has."""
    if status >= 0:
        return status
    found = c_void_p()
    if GetErrorInfo(0, ctypes.byref(found)) != 0:
        raise Error(status, source=source)
    report = Reference(found.value)
    text = c_void_p()
    _error_source(report, ctypes.byref(text))
    source = take_string(text.value) or source
    text = c_void_p()
    _error_description(report, ctypes.byref(text))
    raise Error(status, take_string(text.value), source)


def made(function, *arguments, source=""):
    """Calls a function whose last argument receives an interface, and takes that over."""
    found = c_void_p()
    check(function(*arguments, ctypes.byref(found)), source)
    return Reference(found.value)


class _ModuleOf(ctypes.Structure):
    _fields_ = [("file", c_char_p), ("base", c_void_p), ("name", c_char_p), ("symbol", c_void_p)]


def library_path():
    """The file that the shared library was loaded from."""
    told = _ModuleOf()
    loader = ctypes.CDLL(None)
    loader.dladdr.argtypes = [c_void_p, c_void_p]
    loader.dladdr(ctypes.cast(library.SysFreeString, c_void_p), ctypes.byref(told))
    return os.fsdecode(told.file)
