"""Python values in VARIANTs and out of them.

A VARIANT is 24 bytes at a place of a ctypes buffer: its type, and from byte 8 on its value. `store`
writes one whose content the writer owns afterwards, and clears with `VariantClear`; interfaces are
stored with a reference of their own. `load` reads one and leaves it as it is.
"""

import ctypes
import datetime
import decimal
import operator
import struct
from collections.abc import Callable
from ctypes import c_int32, c_void_p
from typing import Any

from . import runtime
from .runtime import allocate_string, check, read_string

VT_EMPTY, VT_NULL, VT_I2, VT_I4, VT_R4, VT_R8, VT_CY, VT_DATE, VT_BSTR = range(9)
VT_DISPATCH, VT_ERROR, VT_BOOL, VT_VARIANT, VT_UNKNOWN = range(9, 14)
VT_I1, VT_UI1, VT_UI2, VT_UI4, VT_I8, VT_UI8, VT_INT, VT_UINT, VT_VOID = range(16, 25)
VT_PTR, VT_SAFEARRAY, VT_USERDEFINED, VT_RECORD = 26, 27, 29, 36
VT_ARRAY, VT_BYREF = 0x2000, 0x4000

SIZE = 24
_DEEPEST = 100  # lists in lists

# The value behind the type: how `struct` writes it.
_FORMATS = {VT_I1: "b", VT_UI1: "B", VT_I2: "h", VT_UI2: "H", VT_I4: "i", VT_INT: "i", VT_UI4: "I",
            VT_UINT: "I", VT_I8: "q", VT_UI8: "Q", VT_R4: "f", VT_R8: "d", VT_ERROR: "i"}
_VALUES = {vt: struct.Struct("<" + form) for vt, form in _FORMATS.items()}
# A number of ctypes keeps its type, where a plain one becomes VT_I4 or VT_R8.
_TYPES = {ctypes.c_int8: VT_I1, ctypes.c_uint8: VT_UI1, ctypes.c_int16: VT_I2,
          ctypes.c_uint16: VT_UI2, ctypes.c_int32: VT_I4, ctypes.c_uint32: VT_UI4,
          ctypes.c_int64: VT_I8, ctypes.c_uint64: VT_UI8, ctypes.c_float: VT_R4,
          ctypes.c_double: VT_R8}
_DAY_ZERO = datetime.datetime(1899, 12, 30)
_DAY = datetime.timedelta(days=1)

_whole = struct.Struct("<HxxxxxxQ")
_signed = struct.Struct("<Hxxxxxxq")
_real = struct.Struct("<Hxxxxxxd")
pack, _unpack = _whole.pack_into, _whole.unpack_from
_pack_signed, _pack_real = _signed.pack_into, _real.pack_into

# late_binding puts its own here: an address to a Python object.
wrap_interface: Callable[[int], Any]


class Unpassable(TypeError):
    """A Python value for which there is no automation value."""


class InterfaceHolder:
    """What stands for an object of the library; `_reference` is None after its release."""

    __slots__ = ("_reference", "__weakref__")

    def _held(self):
        raise NotImplementedError

    def __reduce_ex__(self, protocol):
        raise TypeError("an object of the library can be neither copied nor pickled")


def store(buffer, place, value, depth=0):
    """Writes a value in the type that is natural for it. `depth` counts the lists around it."""
    kind = type(value)
    if kind is str:
        pack(buffer, place, VT_BSTR, allocate_string(value))
    elif kind is bool:
        pack(buffer, place, VT_BOOL, 0xFFFF if value else 0)
    elif kind is int:
        _store_integer(buffer, place, value)
    elif kind is float:
        _pack_real(buffer, place, VT_R8, value)
    elif value is None:
        pack(buffer, place, VT_EMPTY, 0)
    else:
        _store_other(buffer, place, value, depth)


def _store_integer(buffer, place, value):
    if -0x80000000 <= value < 0x80000000:
        _pack_signed(buffer, place, VT_I4, value)
    elif -1 << 63 <= value < 1 << 63:
        _pack_signed(buffer, place, VT_I8, value)
    elif 0 < value < 1 << 64:
        pack(buffer, place, VT_UI8, value)
    else:
        raise Unpassable("the number does not fit 64 bits")


def _store_other(buffer, place, value, depth):
    if isinstance(value, InterfaceHolder):
        interface, vt = value._held()
        pack(buffer, place, vt, runtime.add_reference(interface))
    elif isinstance(value, str):
        store(buffer, place, str(value))
    elif isinstance(value, (bytes, bytearray)):
        string = runtime.SysAllocStringByteLen(bytes(value), len(value))
        if string is None:
            raise MemoryError
        pack(buffer, place, VT_BSTR, string)
    elif isinstance(value, datetime.datetime):
        _pack_real(buffer, place, VT_DATE, (value - _DAY_ZERO) / _DAY)
    elif isinstance(value, decimal.Decimal):
        _pack_signed(buffer, place, VT_CY, int(value.scaleb(4).to_integral_value()))
    elif type(value) in _TYPES:
        vt = _TYPES[type(value)]
        pack(buffer, place, vt, 0)
        _VALUES[vt].pack_into(buffer, place + 8, value.value)
    elif isinstance(value, (list, tuple)):
        pack(buffer, place, VT_ARRAY | VT_VARIANT, store_array(value, VT_VARIANT, depth + 1))
    elif isinstance(value, float):
        _pack_real(buffer, place, VT_R8, value)
    elif hasattr(value, "__index__"):
        _store_integer(buffer, place, operator.index(value))
    else:
        raise Unpassable(f"an object of the type {type(value).__name__} cannot be passed here")


def store_as(buffer, place, value, vt, depth=0):
    """Writes a value in a given type; what stood there must have been cleared."""
    if vt == VT_VARIANT:
        store(buffer, place, value, depth)
    elif vt & VT_ARRAY:
        array = 0 if value is None else store_array(value, vt & ~VT_ARRAY, depth + 1)
        pack(buffer, place, vt, array)
    else:
        store(buffer, place, value)
        address = ctypes.addressof(buffer) + place
        if runtime.VariantChangeType(address, address, 0, vt) < 0:
            runtime.VariantClear(address)
            raise Unpassable(f"{value!r} cannot be converted")


def store_array(items, element, depth):
    """A new array of one dimension from index 0."""
    if depth > _DEEPEST:
        raise Unpassable(f"lists are nested more than {_DEEPEST} deep, or hold themselves")
    if isinstance(items, (str, bytes)) or not hasattr(items, "__len__"):
        raise Unpassable(f"a list is needed, not {items!r}")
    array = runtime.SafeArrayCreateVector(element, 0, len(items))
    if not array:
        raise MemoryError
    try:
        data = c_void_p()
        check(runtime.SafeArrayAccessData(array, ctypes.byref(data)))
        one = ctypes.create_string_buffer(SIZE)
        size = _element_size(array)
        try:
            for index, item in enumerate(items):
                store_as(one, 0, item, element, depth)
                source = one if element == VT_VARIANT else ctypes.byref(one, 8)
                ctypes.memmove(data.value + index * size, source, size)  # the array owns it now
        finally:
            runtime.SafeArrayUnaccessData(array)
    except BaseException:
        runtime.SafeArrayDestroy(array)
        raise
    return array


def _element_size(array):
    return ctypes.c_uint32.from_address(array + 4).value


def load(buffer, place):
    """The Python value of a VARIANT. Empty and Null are None."""
    vt, bits = _unpack(buffer, place)
    if vt == VT_BSTR:
        return read_string(bits)
    if vt in _VALUES:
        return _VALUES[vt].unpack_from(buffer, place + 8)[0]
    if vt == VT_BOOL:
        return bits & 0xFFFF != 0
    if vt in (VT_EMPTY, VT_NULL):
        return None
    return _load_other(buffer, place, vt, bits)


def _load_other(buffer, place, vt, bits):
    if vt in (VT_DISPATCH, VT_UNKNOWN):
        return wrap_interface(bits) if bits else None
    if vt == VT_DATE:
        return _DAY_ZERO + _DAY * _real.unpack_from(buffer, place)[1]
    if vt == VT_CY:
        return decimal.Decimal(_signed.unpack_from(buffer, place)[1]).scaleb(-4)
    if vt & VT_BYREF:
        copy = ctypes.create_string_buffer(SIZE)
        check(runtime.VariantCopyInd(copy, ctypes.addressof(buffer) + place))
        try:
            return load(copy, 0)
        finally:
            runtime.VariantClear(copy)
    if vt & VT_ARRAY:
        return load_array(bits) if bits else None
    raise TypeError(f"a value of type {vt} has no form in Python")


def load_at(address):
    """The Python value of a VARIANT in memory of others."""
    return load((ctypes.c_char * SIZE).from_address(address), 0)


def load_array(array):
    """The elements as a list; of several dimensions as a list of lists. Bounds are left out."""
    told = ctypes.c_uint16()
    check(runtime.SafeArrayGetVartype(array, ctypes.byref(told)))
    element = told.value
    counts = []
    for dimension in range(1, runtime.SafeArrayGetDim(array) + 1):
        lower, upper = c_int32(), c_int32()
        check(runtime.SafeArrayGetLBound(array, dimension, ctypes.byref(lower)))
        check(runtime.SafeArrayGetUBound(array, dimension, ctypes.byref(upper)))
        counts.append(upper.value - lower.value + 1)
    size = _element_size(array)
    data = c_void_p()
    check(runtime.SafeArrayAccessData(array, ctypes.byref(data)))
    try:
        def one(index):
            address = data.value + index * size
            if element == VT_VARIANT:
                return load_at(address)
            value = ctypes.create_string_buffer(SIZE)
            pack(value, 0, element, 0)
            ctypes.memmove(ctypes.byref(value, 8), address, size)
            return load(value, 0)

        def part(dimension, index, stride):  # the first dimension varies fastest
            if dimension == len(counts):
                return one(index)
            return [part(dimension + 1, index + i * stride, stride * counts[dimension])
                    for i in range(counts[dimension])]

        return part(0, 0, 1)
    finally:
        runtime.SafeArrayUnaccessData(array)
