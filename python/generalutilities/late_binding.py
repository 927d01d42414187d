"""Objects of the library as Python objects, made from type information alone.

For each interface one Python class is made when it is first met: a method or property for each
member, with the signature that the type information tells. A call packs its values into a `_Frame`,
a block of memory laid out once for the member, and goes through `IDispatch::Invoke`.

What a method gives back is its result, or a tuple of the result and the values of its [out] and
[in,out] parameters, in their order. A negative answer (S_FALSE) is None where there would be a
result, and False for a method without one.
"""

import ctypes
import enum
import functools
import struct
from collections.abc import Mapping
from ctypes import c_char_p, c_int32, c_uint16, c_uint32, c_void_p

from . import callbacks, runtime, type_information, values
from .errors import ArgumentError, Error, ReleasedError
from .events import Events
from .runtime import IID_IDispatch, NO_IID, Operation, Reference, check, made, query
from .type_information import (CLASS, ENUMERATION, GET, METHOD, NEW_ENUM, PUT, VALUE, Member,
                               python_name)
from .values import InterfaceHolder, Unpassable, load, store

_PROPERTY_PUT = -3
_TYPE_MISMATCH, _NOT_FOUND, _BAD_COUNT, _NOT_OPTIONAL = (
    code - (1 << 32) for code in (0x80020005, 0x80020004, 0x8002000E, 0x8002000F))
_EXCEPTION = 0x80020009 - (1 << 32)
_NOT_REGISTERED = 0x800401F3 - (1 << 32)

_invoke = Operation(6, c_int32, c_void_p, c_uint32, c_uint16, c_void_p, c_void_p, c_void_p, c_void_p)
_ids_of_names = Operation(5, c_char_p, c_void_p, c_uint32, c_uint32, c_void_p)
_next_value = Operation(3, c_uint32, c_void_p, c_void_p)

# Behind the arguments of a frame: DISPPARAMS, the result, EXCEPINFO, the number of a bad argument,
# the identifier of a named argument.
_PARAMETERS, _RESULT, _EXCEPTION_INFO, _BAD_ARGUMENT, _NAMED, _FIXED_SIZE = 0, 24, 48, 112, 116, 120
_exception_info = struct.Struct("<8xQQQ24xi4x")
_no_iid = ctypes.create_string_buffer(NO_IID, 16)


class _Frame:
    """The memory of one call. By-reference arguments point to values of their own at its end."""

    def __init__(self, count, outputs, flags):
        self.fixed = count * values.SIZE
        self.slots = self.fixed + _FIXED_SIZE
        size = self.slots + len(outputs) * values.SIZE
        self.buffer = ctypes.create_string_buffer(size)
        base = self.base = ctypes.addressof(self.buffer)
        named = flags == PUT
        struct.pack_into("<QQII", self.buffer, self.fixed, base,
                         base + self.fixed + _NAMED if named else 0, count, 1 if named else 0)
        struct.pack_into("<i", self.buffer, self.fixed + _NAMED, _PROPERTY_PUT)
        for slot, (place, vt) in enumerate(outputs):
            whole = self.slots + slot * values.SIZE
            values.pack(self.buffer, place, values.VT_BYREF | vt,
                         base + whole + (0 if vt == values.VT_VARIANT else 8))
        self.parameters, self.result, self.exception, self.bad = (
            c_void_p(base + self.fixed + offset)
            for offset in (_PARAMETERS, _RESULT, _EXCEPTION_INFO, _BAD_ARGUMENT))


def _failure(frame, status, source, names):
    """The exception for a failing status of `Invoke`."""
    if status == _EXCEPTION:
        reporter, description, help_file, code = _exception_info.unpack_from(
            frame.buffer, frame.fixed + _EXCEPTION_INFO)
        runtime.SysFreeString(help_file)
        reporter = runtime.take_string(reporter)
        return Error(code, runtime.take_string(description), reporter or source)
    if status in (_TYPE_MISMATCH, _NOT_FOUND, _NOT_OPTIONAL):
        bad = struct.unpack_from("<I", frame.buffer, frame.fixed + _BAD_ARGUMENT)[0]
        if bad < len(names):
            source += f", argument {names[len(names) - 1 - bad]}"
    if status in (_TYPE_MISMATCH, _NOT_FOUND, _NOT_OPTIONAL, _BAD_COUNT):
        return ArgumentError(status, source=source)
    return Error(status, source=source)


def _dictionary(mapping):
    """The library's own dictionary with the entries of a mapping."""
    copy = create("Scripting.Dictionary")
    for key in mapping:
        copy.Add(key, mapping[key])
    return copy


def _write_back(mapping, copy):
    """Takes over the items that a method has changed."""
    for key in list(mapping):
        item = copy[key]
        if item != mapping[key]:
            mapping[key] = item


def _address(parameter, value):
    """`void*` and records: the address of the caller's memory, and what keeps it alive."""
    if isinstance(value, int) and parameter.vt == values.VT_VOID:
        return value, None
    if isinstance(value, (ctypes.Array, ctypes.Structure, ctypes._SimpleCData)):
        return ctypes.addressof(value), value
    if parameter.vt == values.VT_RECORD and isinstance(value, (tuple, list)):
        record = (c_int32 * len(parameter.user_type.variables))(*value)
        return ctypes.addressof(record), record
    try:
        memory = (ctypes.c_char * memoryview(value).nbytes).from_buffer(value)
    except TypeError:
        raise Unpassable("memory that can be written is needed: an object of ctypes, a bytearray "
                         "or an array") from None
    return ctypes.addressof(memory), memory


def _convert_enumeration(parameter):
    """What turns a number into the enumeration's member, where the type is one."""
    if parameter.user_type is None or parameter.user_type.kind != ENUMERATION:
        return None
    known = enumeration(parameter.user_type)
    return lambda value: known(value) if value in known._value2member_map_ else value


def _call_of(class_name, member):
    """The call of a member: a function of the object and a value for each input parameter."""
    parameters = member.parameters
    count = len(parameters)
    source = f"{class_name}.{member.name}"
    names = [parameter.name for parameter in parameters]
    identifier, flags = c_int32(member.id), c_uint16(member.kind)
    locale = c_uint32(0)
    no_iid = c_void_p(ctypes.addressof(_no_iid))

    def place_of(index):  # the last argument stands first
        return (count - 1 - index) * values.SIZE

    outputs = [(place_of(i), p.vt) for i, p in enumerate(parameters) if p.is_out]
    first_slot = count * values.SIZE + _FIXED_SIZE
    result_place = count * values.SIZE + _RESULT
    slot_of = {p.name: first_slot + i * values.SIZE
               for i, p in enumerate(q for q in parameters if q.is_out)}
    given_back = ([(result_place, _convert_enumeration(member.result))] if member.result else []) + [
        (slot_of[p.name], _convert_enumeration(p)) for p in parameters if p.is_out]

    def store_special(parameter):
        """How a value is stored whose type is not left to `Invoke`; None for all others."""
        if parameter.is_out:
            slot = slot_of[parameter.name]

            def store_slot(buffer, _, value, owned, kept):
                values.store_as(buffer, slot, value, parameter.vt)
            return store_slot
        if parameter.is_address:
            def store_address(buffer, place, value, owned, kept):
                address, memory = _address(parameter, value)
                kept.append(memory)
                values.pack(buffer, place, values.VT_BYREF | values.VT_UI1, address)
            return store_address
        if parameter.vt in (values.VT_UNKNOWN, values.VT_DISPATCH):
            def store_object(buffer, place, value, owned, kept):
                if isinstance(value, Mapping):
                    copy = _dictionary(value)
                    kept.append((value, copy))
                    value = copy
                store(buffer, place, value)
                owned.append(place)
            return store_object
        return None

    plan = [(place_of(i), store_special(p), p.name) for i, p in enumerate(parameters) if p.is_in]
    slots = list(slot_of.values())
    to_fill = [(slot_of[p.name], 0 if p.vt == values.VT_VARIANT else p.vt)
               for p in parameters if p.is_out and not p.is_in]
    only_result = len(given_back) == 1 and not slots and given_back[0][1] is None
    plain = {int, bool, float, type(None)}
    frames = []  # those at rest; a call inside a call of the same member takes another
    raised = callbacks.raised

    def call(self, *arguments):
        reference = self._reference
        if reference is None:
            raise ReleasedError(f"{source}: the object was released")
        try:
            frame = frames.pop()
        except IndexError:
            frame = _Frame(count, outputs, member.kind)
        buffer = frame.buffer
        owned, kept = slots[:], []
        try:
            for slot, vt in to_fill:
                values.pack(buffer, slot, vt, 0)
            for (place, special, name), value in zip(plan, arguments):
                try:
                    if special is None:
                        store(buffer, place, value)
                        if type(value) not in plain:
                            owned.append(place)
                    else:
                        special(buffer, place, value, owned, kept)
                except Unpassable as error:
                    raise ArgumentError(_TYPE_MISMATCH, str(error),
                                        f"{source}, argument {name}") from None
            status = self._invoke(reference, identifier, no_iid, locale, flags, frame.parameters,
                                  frame.result, frame.exception, frame.bad)
            if raised and (error := callbacks.take_raised()) is not None:
                if status >= 0 and member.result:
                    runtime.VariantClear(frame.result)
                raise error
            if status < 0:
                raise _failure(frame, status, source, names)
            if status == 0:
                for pair in kept:
                    if type(pair) is tuple:
                        _write_back(*pair)
            if only_result:
                value = load(buffer, result_place)
                if type(value) not in plain:
                    runtime.VariantClear(frame.result)
                return value if status == 0 else None
            return _give_back(buffer, status)
        finally:
            base = frame.base
            for place in owned:
                runtime.VariantClear(base + place)
            frames.append(frame)

    def _give_back(buffer, status):
        found = []
        for place, convert in given_back:
            value = load(buffer, place)
            found.append(value if convert is None else convert(value))
        if member.result:
            runtime.VariantClear(ctypes.addressof(buffer) + result_place)
        if status != 0:
            return None if given_back else False
        return tuple(found) if len(found) > 1 else found[0] if found else None

    return call


def _method(class_name, member):
    """The call under a signature of its own, so that Python itself checks names and numbers."""
    inputs = "".join(", " + python_name(p.name) for p in member.inputs)
    scope = {"call": _call_of(class_name, member)}
    exec("from __future__ import annotations\n"
         f"def {member.name}{member.signature}: return call(self{inputs})\n", scope)
    function = scope[member.name]
    function.__qualname__ = f"{class_name}.{member.name}"
    function.__module__ = __package__
    return function


class _IndexedProperty:
    """A property with arguments: `o.Item(key)` and `o.Item[key]` read, `o.Item[key] = x` writes."""

    def __init__(self, getter, setter):
        self._getter = getter
        self._setter = setter

    def __get__(self, instance, owner=None):
        return self if instance is None else _BoundProperty(instance, self._getter, self._setter)


class _BoundProperty:
    def __init__(self, instance, getter, setter):
        self._instance, self._getter, self._setter = instance, getter, setter

    def __call__(self, *arguments, **named):
        return self._getter(self._instance, *arguments, **named)

    def __getitem__(self, key):
        return self._getter(self._instance, key)

    def __setitem__(self, key, value):
        if self._setter is None:
            raise AttributeError("this property cannot be written")
        self._setter(self._instance, key, value)


class Unknown(InterfaceHolder):
    """An object of the library without members of its own; it can be passed on. Ends with `with`,
    `release`, or when Python no longer needs it."""

    __slots__ = ()
    _vt = values.VT_UNKNOWN

    def __init__(self, reference):
        self._reference = reference

    def _held(self):
        if self._reference is None:
            raise ReleasedError(f"this {type(self).__name__} was released")
        return self._reference, self._vt

    def release(self):
        """Gives the object back now. A second time does nothing."""
        self._reference = None

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.release()

    def __repr__(self):
        return f"<{type(self).__name__}{' (released)' if self._reference is None else ''}>"


_invokes = {}  # `Invoke` of all objects with the same table of operations


class Object(Unknown):
    """An object of the library that can be called."""

    __slots__ = ("_invoke", "_events")
    _vt = values.VT_DISPATCH

    def __init__(self, reference):
        super().__init__(reference)
        table = c_void_p.from_address(reference).value
        self._invoke = _invokes.get(table) or _invokes.setdefault(table, _invoke.of(reference))
        self._events = None

    def on(self, event, function):
        """Has `function` called at each event of that name, with the event's values."""
        if self._events is None:
            self._events = Events(self._held()[0], type(self).__name__)
        self._events.add(event, function)

    def off(self, event, function):
        """Ends what `on` began."""
        if self._events is None:
            raise ValueError(f"{type(self).__name__} calls no function at events")
        self._events.remove(event, function)

    def release(self):
        """Gives the object back now, after its events are disconnected. A second time does nothing."""
        events, self._events = self._events, None
        if events is not None:
            events.disconnect()
        super().release()


class Untyped(Object):
    """An object without type information: `o.Name(values)` calls a method or reads a property,
    `o[key]` and `o[key] = x` go to the default property."""

    __slots__ = ()

    def _identifier(self, name):
        text = ctypes.create_string_buffer(runtime.wide(name))
        found = c_int32()
        status = _ids_of_names(self._held()[0], NO_IID, ctypes.byref(c_void_p(ctypes.addressof(text))),
                               1, 0, ctypes.byref(found))
        if status < 0:
            raise AttributeError(f"the object has no member {name}")
        return found.value

    def _call(self, identifier, name, kind, arguments, gives=True):
        named = [_Value(f"argument {i}") for i in range(1, len(arguments) + 1)]
        member = Member(name, identifier, kind, named)
        member.result = _Value("result") if gives else None
        return _call_of("object", member)(self, *arguments)

    def __getattr__(self, name):
        if name.startswith("_"):
            raise AttributeError(name)
        identifier = self._identifier(name)
        return lambda *arguments: self._call(identifier, name, METHOD | GET, arguments)

    def __getitem__(self, key):
        return self._call(VALUE, "[]", GET, (key,))

    def __setitem__(self, key, value):
        self._call(VALUE, "[]", PUT, (key, value), gives=False)

    def __iter__(self):
        return self._call(NEW_ENUM, "_NewEnum", METHOD | GET, ())


class _Value:
    """A parameter of a member without type information, passed by value."""

    is_in, is_out, is_result, is_address = True, False, False, False
    vt, user_type = values.VT_VARIANT, None

    def __init__(self, name):
        self.name = name


def _iterate(enumerator):
    """The values of an `IEnumVARIANT`, one by one, as the collection is then."""
    value = ctypes.create_string_buffer(values.SIZE)
    while check(_next_value(enumerator, 1, value, None)) == 0:
        try:
            yield load(value, 0)
        finally:
            runtime.VariantClear(value)


def _member_attributes(class_name, members):
    """What a Python class has for the members of an interface."""
    attributes = {}
    for name in dict.fromkeys(member.name for member in members):
        kinds = {m.kind: m for m in members if m.name == name}
        reader = kinds.get(METHOD) or kinds.get(GET)
        if reader and reader.id == NEW_ENUM:
            attributes["__iter__"] = _call_of(class_name, reader)
        elif name.startswith("_"):
            continue  # meant for the library itself
        elif METHOD in kinds:
            attributes[name] = _method(class_name, kinds[METHOD])
        else:
            getter = _method(class_name, kinds[GET]) if GET in kinds else None
            setter = _method(class_name, kinds[PUT]) if PUT in kinds else None
            if GET in kinds and kinds[GET].parameters:
                attributes[name] = _IndexedProperty(getter, setter)
                if kinds[GET].id == VALUE:
                    attributes["__getitem__"] = getter
            else:
                attributes[name] = property(getter, setter)
            if name == "Count":
                attributes["__len__"] = getter
                attributes["__bool__"] = lambda self: True
    return attributes


@functools.cache
def _classes():
    """The library's classes by the identifiers of their default interfaces."""
    return {one.interfaces[0].guid: one
            for one in type_information.types().values() if one.kind == CLASS}


_made = {}


def class_of(interface_type):
    """The Python class for an interface, named after the library's class that has it."""
    known = _made.get(interface_type.guid)
    if known is None:
        owner = _classes().get(interface_type.guid, interface_type)
        attributes = _member_attributes(owner.name, interface_type.members)
        attributes |= {"__slots__": (), "__doc__": owner.help or None, "__module__": __package__}
        known = _made[interface_type.guid] = type(owner.name, (Object,), attributes)
    return known


@functools.cache
def enumeration(described):
    """The enumeration of the library as one of Python."""
    return enum.IntEnum(described.name, described.variables, module=__package__)


def named_type(name):
    """A class or an enumeration of the library by its name."""
    described = type_information.types().get(name)
    if described is not None:
        described = described.resolved()
        if described.kind == CLASS:
            return class_of(described.interfaces[0])
        if described.kind == ENUMERATION:
            return enumeration(described)
    raise AttributeError(f"the library has no class or enumeration {name}")


def wrap(interface):
    """A Python object for a borrowed interface: by its type, as an iterator, or as `Unknown`."""
    dispatch = query(interface, IID_IDispatch)
    if dispatch is not None:
        described = type_information.type_of(dispatch)
        return (Untyped if described is None else class_of(described))(dispatch)
    enumerator = query(interface, runtime.IID_IEnumVARIANT)
    if enumerator is not None:
        return _iterate(enumerator)
    return Unknown(Reference(runtime.add_reference(interface)))


values.wrap_interface = wrap


def create(name):
    """A new object of a class: by its name in the library ("StringUtils") or by a ProgID."""
    described = type_information.types().get(name.removeprefix("GeneralUtilities.").removesuffix(".1"))
    if described is not None and described.kind == CLASS:
        clsid = described.guid
    else:
        found = ctypes.create_string_buffer(16)
        check(runtime.CLSIDFromProgID(runtime.wide(name), found), f"creating {name}")
        clsid = found.raw
    runtime.SetErrorInfo(0, None)
    return wrap(made(runtime.CoCreateInstance, clsid, None, 1, IID_IDispatch,
                     source=f"creating {name}"))
