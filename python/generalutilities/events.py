"""Events: functions of the program behind a connection point.

A sink is a Python object that the library sees as an `IDispatch`. Its table of operations is made
once for all sinks; the address of a sink leads to its Python object as long as somebody holds it.
"""

import ctypes
from ctypes import CFUNCTYPE, c_int32, c_uint16, c_uint32, c_void_p

from . import callbacks, runtime, type_information, values
from .runtime import IID_IDispatch, IID_IUnknown, Operation, Reference, check, query

_IID_CONTAINER = runtime.guid("{B196B284-BAB4-101A-B69C-00AA00341D07}")
_E_NOTIMPL, _E_NOINTERFACE, _E_POINTER, _UNKNOWN_NAME, _EXCEPTION = (
    code - (1 << 32) for code in (0x80004001, 0x80004002, 0x80004003, 0x80020006, 0x80020009))

_points = Operation(3, c_void_p)
_next_point = Operation(3, c_uint32, c_void_p, c_void_p)
_point_interface = Operation(3, c_void_p)
_advise = Operation(5, c_void_p, c_void_p)
_unadvise = Operation(6, c_uint32)

_living = {}  # sinks that somebody holds, by address


class _DispParams(ctypes.Structure):
    _fields_ = [("arguments", c_void_p), ("named", c_void_p), ("count", c_uint32),
                ("named_count", c_uint32)]


class _Sink:
    def __init__(self, interface):
        self.interface = interface  # the identifier that it answers to
        self.functions = {}  # lists by the event's identifier
        self.references = 1
        self.memory = c_void_p(ctypes.addressof(_table))
        self.address = ctypes.addressof(self.memory)
        _living[self.address] = self

    def call(self, identifier, parameters):
        given = [values.load_at(parameters.arguments + i * values.SIZE)
                 for i in reversed(range(parameters.count))]  # the last argument stands first
        for function in tuple(self.functions.get(identifier, ())):
            function(*given)


def _query(this, iid, out):
    if not out:
        return _E_POINTER
    sink = _living[this]
    answers = ctypes.string_at(iid, 16) in (IID_IUnknown, IID_IDispatch, sink.interface)
    c_void_p.from_address(out).value = this if answers else None
    sink.references += answers
    return 0 if answers else _E_NOINTERFACE


def _add_reference(this):
    _living[this].references += 1
    return _living[this].references


def _release(this):
    sink = _living[this]
    sink.references -= 1
    if not sink.references:
        del _living[this]
    return sink.references


def _type_count(this, count):
    c_uint32.from_address(count).value = 0
    return 0


@callbacks.guarded(_EXCEPTION)
def _invoke(this, identifier, iid, locale, flags, parameters, result, exception, bad):
    _living[this].call(identifier, _DispParams.from_address(parameters))
    return 0


_operations = (  # kept: the table holds only their addresses
    CFUNCTYPE(c_int32, c_void_p, c_void_p, c_void_p)(_query),
    CFUNCTYPE(c_uint32, c_void_p)(_add_reference),
    CFUNCTYPE(c_uint32, c_void_p)(_release),
    CFUNCTYPE(c_int32, c_void_p, c_void_p)(_type_count),
    CFUNCTYPE(c_int32, c_void_p, c_uint32, c_uint32, c_void_p)(lambda *_: _E_NOTIMPL),
    CFUNCTYPE(c_int32, c_void_p, c_void_p, c_void_p, c_uint32, c_uint32, c_void_p)(
        lambda *_: _UNKNOWN_NAME),
    CFUNCTYPE(c_int32, c_void_p, c_int32, c_void_p, c_uint32, c_uint16, c_void_p, c_void_p,
              c_void_p, c_void_p)(_invoke),
)
_table = (c_void_p * len(_operations))(*(ctypes.cast(one, c_void_p).value for one in _operations))


class Events:
    """The connections of one object, one for each of its event interfaces."""

    def __init__(self, interface, class_name):
        self._class_name = class_name
        self._events = {}  # by name: the sink and the event's identifier
        self._connections = []
        container = query(interface, _IID_CONTAINER)
        for point in _points_of(container) if container is not None else ():
            identifier = ctypes.create_string_buffer(16)
            check(_point_interface(point, identifier))
            described = next(one for one in type_information.types().values()
                             if one.guid == identifier.raw)
            sink = _Sink(identifier.raw)
            cookie = c_uint32()
            try:
                check(_advise(point, sink.address, ctypes.byref(cookie)))
            finally:
                _release(sink.address)  # the connection holds it now
            self._connections.append((point, cookie.value))
            self._events |= {member.name: (sink, member.id) for member in described.members}

    def _find(self, event):
        if event not in self._events:
            raise ValueError(f"{self._class_name} has no event {event}; it has " +
                             (", ".join(self._events) or "none"))
        return self._events[event]

    def add(self, event, function):
        sink, identifier = self._find(event)
        if not callable(function):
            raise TypeError(f"{function!r} cannot be called at the event {event}")
        sink.functions.setdefault(identifier, []).append(function)

    def remove(self, event, function):
        sink, identifier = self._find(event)
        if function not in sink.functions.get(identifier, ()):
            raise ValueError(f"{function!r} is not called at the event {event}")
        sink.functions[identifier].remove(function)

    def disconnect(self):
        for point, cookie in self._connections:
            _unadvise(point, cookie)
        self._connections = []


def _points_of(container):
    found = c_void_p()
    check(_points(container, ctypes.byref(found)))
    points = Reference(found.value)
    while True:
        found = c_void_p()
        if check(_next_point(points, 1, ctypes.byref(found), None)) != 0:
            return
        yield Reference(found.value)
