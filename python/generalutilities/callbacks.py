"""Python functions that the library calls.

An exception cannot cross the library. It is kept, the library is told of a failure or given a
neutral answer, and the call from which the library was entered raises it when it comes back. Until
then the thread calls no other function of the program.
"""

import ctypes
import functools
import threading
from collections.abc import Callable
from ctypes import c_int32, c_void_p
from typing import Any

from . import runtime

raised = {}  # the first exception of each thread's call


def guarded(failure):
    """Makes a function safe to be called by the library; `failure` is its answer if it raises."""
    def decorate(function):
        @functools.wraps(function)
        def safe(*arguments):
            thread = threading.get_ident()
            if thread in raised:
                return failure
            try:
                return function(*arguments)
            except BaseException as error:  # an interruption by the user, too
                raised[thread] = error
                return failure
        return safe
    return decorate


def take_raised():
    """What a function of the program raised during the thread's call that has just ended, or None."""
    return raised.pop(threading.get_ident(), None)


_Compare = ctypes.CFUNCTYPE(c_int32, c_void_p, c_void_p)


class comparison:
    """A comparison function for `QLNSort`, to be passed in the place of its handle.

    `function(a, b)` is negative when `a` sorts first. `element` says what it gets: `str` for the
    strings of `StringSort`, or the ctypes type of an element of `Sort`. The handle lives as long as
    this object; `close` or `with` end it earlier.
    """

    def __init__(self, function: Callable[[Any, Any], float], element: type = str) -> None:
        if not callable(function):
            raise TypeError("a comparison is made of a function that can be called")
        if element is str:
            def read(address):
                return runtime.read_string(c_void_p.from_address(address).value)
        else:
            ctypes.sizeof(element)  # only types of ctypes have one

            def read(address):
                found = element.from_address(address)
                return getattr(found, "value", found)

        @guarded(0)
        def compare(first, second):
            answer = function(read(first), read(second))
            return (answer > 0) - (answer < 0)

        self.element = element
        self._callback = _Compare(compare)
        self._handle = runtime.HandleFromPointer(ctypes.cast(self._callback, c_void_p))

    def __index__(self):
        if not self._handle:
            raise ValueError("this comparison function is closed")
        return self._handle

    def close(self) -> None:
        handle, self._handle = self._handle, 0
        if handle:
            runtime.ReleaseHandle(handle)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def __del__(self):
        if getattr(self, "_handle", 0):
            self.close()
