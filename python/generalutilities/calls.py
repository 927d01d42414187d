"""A call of a member through `IDispatch::Invoke`.

A `Call` is made once for a member. It knows where in a `Frame`, a block of memory laid out once, each
value has its place, and how it gets there: most go in the type that is natural for them, and `Invoke`
converts. What a call gives back is its result, or a tuple of the result and the values of its [out]
and [in,out] parameters, in their order. A negative answer (S_FALSE) is None where there would be a
result, and False for a method without one.
"""

import array
import ctypes
import struct
from collections.abc import Callable, Mapping
from ctypes import c_int32, c_uint16, c_uint32, c_void_p
from typing import Any

from . import callbacks, runtime, values
from .errors import ArgumentError, Error, ReleasedError
from .runtime import NO_IID, Operation
from .type_information import PUT
from .values import SIZE, Unpassable, load, store

invoke = Operation(6, c_int32, c_void_p, c_uint32, c_uint16, c_void_p, c_void_p, c_void_p, c_void_p)
# late_binding puts its own here: a mapping to a dictionary of the library.
make_dictionary: Callable[[Mapping], Any]

_PROPERTY_PUT = -3
_TYPE_MISMATCH, _NOT_FOUND, _BAD_COUNT, _NOT_OPTIONAL, _EXCEPTION = (
    code - (1 << 32) for code in (0x80020005, 0x80020004, 0x8002000E, 0x8002000F, 0x80020009))

# Behind the arguments of a frame: DISPPARAMS, the result, EXCEPINFO, the number of a bad argument,
# the identifier of a named argument; behind these what by-reference arguments point to.
_PARAMETERS, _RESULT, _EXCEPTION_INFO, _BAD_ARGUMENT, _NAMED, _SLOTS = 0, 24, 48, 112, 116, 120
_exception_info = struct.Struct("<8xQQQ24xi4x")
_no_iid = ctypes.create_string_buffer(NO_IID, 16)
_NO_IID, _NO_LOCALE = c_void_p(ctypes.addressof(_no_iid)), c_uint32(0)
_PLAIN = {int, bool, float, type(None)}  # in a VARIANT they own nothing


class Frame:
    """The memory of one call."""

    def __init__(self, call):
        fixed = call.count * SIZE
        self.buffer = ctypes.create_string_buffer(call.slots + len(call.outputs) * SIZE)
        base = self.base = ctypes.addressof(self.buffer)
        writes = call.flags.value == PUT
        struct.pack_into("<QQII", self.buffer, fixed, base, base + fixed + _NAMED if writes else 0,
                         call.count, 1 if writes else 0)
        struct.pack_into("<i", self.buffer, fixed + _NAMED, _PROPERTY_PUT)
        for place, slot, parameter in call.outputs:
            values.pack(self.buffer, place, values.VT_BYREF | parameter.vt,
                        base + slot + (0 if parameter.vt == values.VT_VARIANT else 8))
        self.parameters, self.result, self.exception, self.bad = (
            c_void_p(base + fixed + offset)
            for offset in (_PARAMETERS, _RESULT, _EXCEPTION_INFO, _BAD_ARGUMENT))


class Call:
    """A member as a function of the object and a value for each input parameter."""

    def __init__(self, class_name, member):
        self.source = f"{class_name}.{member.name}"
        self.names = [parameter.name for parameter in member.parameters]
        self.identifier, self.flags = c_int32(member.id), c_uint16(member.kind)
        self.count = count = len(member.parameters)
        self.result = count * SIZE + _RESULT if member.result else None
        self.slots = count * SIZE + _SLOTS
        self.inputs = []  # the place, how a value is stored there, the parameter
        self.outputs = []  # the place, the slot that it points to, the parameter
        self.frames = []  # those at rest; a call inside a call of the same member takes another
        for index, parameter in enumerate(member.parameters):
            place = (count - 1 - index) * SIZE  # the last argument stands first
            if parameter.is_out:
                slot = self.slots + len(self.outputs) * SIZE
                self.outputs.append((place, slot, parameter))
                place = slot
            if parameter.is_in:
                self.inputs.append((place, _storing(parameter, member), parameter))
        self.memory = _memory_of(member)
        self.given_back = [(self.result, member.result)] if member.result else []
        self.given_back += [(slot, parameter) for _, slot, parameter in self.outputs]
        self.plain_result = (self.result is not None and not self.outputs and
                             member.result.enumeration is None)

    def __call__(self, instance, *arguments):
        reference = instance._reference
        if reference is None:
            raise ReleasedError(f"{self.source}: the object was released")
        try:
            frame = self.frames.pop()
        except IndexError:
            frame = Frame(self)
        buffer = frame.buffer
        owned = []  # places that are cleared afterwards
        kept = []  # memory that must live as long as the call, and mappings with their dictionaries
        try:
            for _, slot, parameter in self.outputs:
                values.pack(buffer, slot, parameter.empty, 0)
                owned.append(slot)
            for (place, storing, parameter), value in zip(self.inputs, arguments):
                try:
                    if storing is None:
                        store(buffer, place, value)
                        if type(value) not in _PLAIN:
                            owned.append(place)
                    else:
                        storing(buffer, place, value, parameter, owned, kept)
                except Unpassable as unpassable:
                    raise ArgumentError(_TYPE_MISMATCH, str(unpassable),
                                        f"{self.source}, argument {parameter.name}") from None
            if self.memory is not None:
                self._check_memory(arguments)
            status = instance._invoke(reference, self.identifier, _NO_IID, _NO_LOCALE, self.flags,
                                      frame.parameters, frame.result, frame.exception, frame.bad)
            if status >= 0 and self.result is not None:
                owned.append(self.result)
            if callbacks.raised and (error := callbacks.take_raised()) is not None:
                raise error
            if status < 0:
                raise self._failure(frame, status)
            if status == 0 and self.plain_result:
                return load(buffer, self.result)
            return self._give_back(buffer, status, kept)
        finally:
            base = frame.base
            for place in owned:
                runtime.VariantClear(base + place)
            self.frames.append(frame)

    def _check_memory(self, arguments):
        """The library cannot know how much memory there is, and would go beyond it."""
        memory, size, count = (arguments[index] for index in self.memory)
        held = memoryview(memory).nbytes
        if size < 0 or count < 0 or size * count > held:
            raise ArgumentError(_TYPE_MISMATCH, f"{count} elements of {size} bytes do not fit into "
                                f"{held} bytes", self.source)
        for value in arguments:
            if isinstance(value, callbacks.comparison) and ctypes.sizeof(value.element) > size:
                raise ArgumentError(_TYPE_MISMATCH, f"elements of {size} bytes are no "
                                    f"{value.element.__name__}", self.source)

    def _give_back(self, buffer, status, kept):
        if status != 0:
            return None if self.given_back else False
        for pair in kept:
            if isinstance(pair, tuple):
                _write_back(*pair)
        found = tuple(parameter.convert(load(buffer, place)) for place, parameter in self.given_back)
        return found if len(found) > 1 else found[0] if found else None

    def _failure(self, frame, status):
        """The exception for a failing status of `Invoke`."""
        fixed = self.count * SIZE
        source = self.source
        if status == _EXCEPTION:
            reporter, description, help_file, code = _exception_info.unpack_from(
                frame.buffer, fixed + _EXCEPTION_INFO)
            runtime.SysFreeString(help_file)
            reporter = runtime.take_string(reporter)
            return Error(code, runtime.take_string(description), reporter or source)
        if status == _BAD_COUNT:
            return ArgumentError(status, source=source)
        if status in (_TYPE_MISMATCH, _NOT_FOUND, _NOT_OPTIONAL):
            bad = struct.unpack_from("<I", frame.buffer, fixed + _BAD_ARGUMENT)[0]
            name = f", argument {self.names[self.count - 1 - bad]}" if bad < self.count else ""
            return ArgumentError(status, source=source + name)
        return Error(status, source=source)


def _memory_of(member):
    """Where the values stand that say what memory is passed: itself, the size and the number of its
    elements, the last two by their names. None for a member that takes no memory."""
    found = [next((i for i, p in enumerate(member.inputs) if fits(p)), None) for fits in (
        lambda p: p.vt == values.VT_VOID, lambda p: p.name.endswith("Size"),
        lambda p: p.name.endswith("Count"))]
    return None if None in found else found


def _storing(parameter, member):
    """How a value is stored whose type is not left to `Invoke`; None for all others."""
    if parameter.is_out:
        return _store_in_slot
    if parameter.is_address:
        return _store_address
    if parameter.vt in (values.VT_UNKNOWN, values.VT_DISPATCH):
        return _store_object
    if parameter.vt == values.VT_I4 and any(one.is_address for one in member.parameters):
        return _store_beside_memory
    return None


def _store_beside_memory(buffer, place, value, parameter, owned, kept):
    """A function that compares elements of memory must not take them for strings."""
    if isinstance(value, callbacks.comparison) and value.element is str:
        raise Unpassable("for memory, a comparison function is made with the ctypes type of the "
                         "elements")
    store(buffer, place, value)


def _store_in_slot(buffer, slot, value, parameter, owned, kept):
    """A by-reference argument's own value must have exactly its type."""
    values.store_as(buffer, slot, value, parameter.vt)


def _store_object(buffer, place, value, parameter, owned, kept):
    if isinstance(value, Mapping):
        copy = make_dictionary(value)
        kept.append((value, copy))
        value = copy
    store(buffer, place, value)
    owned.append(place)


def _write_back(mapping, copy):
    """Takes over the items that a method has changed."""
    for key in list(mapping):
        item = copy[key]
        if item != mapping[key]:
            mapping[key] = item


def _store_address(buffer, place, value, parameter, owned, kept):
    """`void*` and records: the address of the caller's memory. A record may come as a tuple."""
    fields = parameter.user_type.variables if parameter.vt == values.VT_RECORD else ()
    if fields and isinstance(value, (tuple, list)) and len(value) == len(fields):
        try:
            value = array.array("i", value)
        except (OverflowError, TypeError) as error:
            raise Unpassable(str(error)) from None
    try:
        memory = (ctypes.c_char * memoryview(value).nbytes).from_buffer(value)
    except TypeError:
        raise Unpassable(f"a tuple of {', '.join(fields)} is needed" if fields else
                         "memory that can be written is needed: an object of ctypes, a bytearray or "
                         "an array") from None
    if len(memory) < len(fields) * ctypes.sizeof(c_int32):
        raise Unpassable(f"{len(memory)} bytes are no record of {', '.join(fields)}")
    kept.append(memory)
    values.pack(buffer, place, values.VT_BYREF | values.VT_UI1, ctypes.addressof(memory))
