"""Objects of the library as Python objects, made from type information alone.

For each interface one Python class is made when it is first met: a method or property for each
member, with the signature that the type information tells.
"""

import ctypes
import functools
import threading
from ctypes import c_char_p, c_int32, c_uint32, c_void_p
from typing import TypeVar

from . import calls, runtime, type_information, values
from .calls import Call
from .errors import ReleasedError
from .events import Events
from .runtime import IID_IDispatch, NO_IID, Operation, Reference, check, made, query
from .type_information import CLASS, ENUMERATION, GET, METHOD, NEW_ENUM, PUT, VALUE, Member, python_name
from .values import InterfaceHolder, load

_Self = TypeVar("_Self")

_ids_of_names = Operation(5, c_char_p, c_void_p, c_uint32, c_uint32, c_void_p)
_next_value = Operation(3, c_uint32, c_void_p, c_void_p)


def _method(class_name, member):
    """The call under a signature of its own, so that Python itself checks names and numbers."""
    inputs = "".join(", " + python_name(p.name) for p in member.inputs)
    scope = {"call": Call(class_name, member)}
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

    def __enter__(self: _Self) -> _Self:
        return self

    def __exit__(self, *_):
        self.release()

    def __repr__(self):
        return f"<{type(self).__name__}{' (released)' if self._reference is None else ''}>"


_invokes: dict = {}  # `Invoke` of all objects with the same table of operations


class Object(Unknown):
    """An object of the library that can be called."""

    __slots__ = ("_invoke", "_events")
    _vt = values.VT_DISPATCH

    def __init__(self, reference=None):
        """Takes over `reference`; without one a new object is created, as by `create`."""
        if reference is None:
            reference = _new(type(self).__name__)
        elif not isinstance(reference, Reference):
            raise TypeError(f"{type(self).__name__}() takes no value")
        super().__init__(reference)
        table = c_void_p.from_address(reference).value
        self._invoke = _invokes.get(table) or _invokes.setdefault(table, calls.invoke.of(reference))
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
        return Call("object", member)(self, *arguments)

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
    vt, enumeration = values.VT_VARIANT, None

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
            attributes["__iter__"] = _method(class_name, reader)
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


_made: dict = {}
_making = threading.RLock()  # an interface has one class, whichever thread meets it first


def class_of(interface_type):
    """The Python class for an interface, named after the library's class that has it."""
    with _making:
        known = _made.get(interface_type.guid)
        if known is None:
            owner = _classes().get(interface_type.guid, interface_type)
            attributes = _member_attributes(owner.name, interface_type.members)
            attributes |= {"__slots__": (), "__doc__": owner.help or None, "__module__": __package__}
            known = _made[interface_type.guid] = type(owner.name, (Object,), attributes)
        return known


def named_type(name):
    """A class or an enumeration of the library by its name."""
    described = type_information.types().get(name)
    if described is not None:
        described = described.resolved()
        if described.kind == CLASS:
            return class_of(described.interfaces[0])
        if described.kind == ENUMERATION:
            return described.enumeration
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


def _new(name):
    """The `IDispatch` of a new object of a class."""
    described = type_information.types().get(name.removeprefix("GeneralUtilities.").removesuffix(".1"))
    if described is not None and described.kind == CLASS:
        clsid = described.guid
    else:
        found = ctypes.create_string_buffer(16)
        check(runtime.CLSIDFromProgID(runtime.wide(name), found), f"creating {name}")
        clsid = found.raw
    runtime.SetErrorInfo(0, None)
    return made(runtime.CoCreateInstance, clsid, None, 1, IID_IDispatch, source=f"creating {name}")


def create(name):
    """A new object of a class: by its name in the library ("StringUtils") or by a ProgID."""
    if not isinstance(name, str):
        raise TypeError("an object is created by the name of its class")
    return wrap(_new(name))


def _dictionary(mapping):
    """The library's own dictionary with the entries of a mapping."""
    copy = create("Scripting.Dictionary")
    for key in mapping:
        copy.Add(key, mapping[key])
    return copy


values.wrap_interface = wrap
calls.make_dictionary = _dictionary
