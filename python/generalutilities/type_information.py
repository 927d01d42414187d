"""What the library says at run time about its types, read once into plain Python values.

`types()` lists the type library; `type_of` is the type of an object. Members are read when they are
asked for.
"""

import ctypes
import enum
import functools
import keyword
from ctypes import POINTER, Structure, Union, c_int16, c_int32, c_uint16, c_uint32, c_void_p

from . import runtime, values
from .runtime import Operation, Reference, check, made, take_string

ENUMERATION, RECORD, INTERFACE, CLASS, ALIAS = 0, 1, 4, 5, 6  # kinds of types
METHOD, GET, PUT = 1, 2, 4  # kinds of members
IN, OUT, RESULT, OPTIONAL, HAS_DEFAULT = 0x01, 0x02, 0x08, 0x10, 0x20  # flags of parameters
VALUE, NEW_ENUM = 0, -4  # identifiers with a meaning

_NIL = -1
_PYTHON_TYPES = {values.VT_I4: "int", values.VT_BOOL: "bool", values.VT_R8: "float",
                 values.VT_BSTR: "str"}


class _TypeDesc(Structure):
    pass


class _TypeDescTarget(Union):
    _fields_ = [("pointee", POINTER(_TypeDesc)), ("reference", c_uint32)]


_TypeDesc._anonymous_ = ["target"]
_TypeDesc._fields_ = [("target", _TypeDescTarget), ("vt", c_uint16)]


class _ElemDesc(Structure):
    _fields_ = [("type", _TypeDesc), ("default", c_void_p), ("flags", c_uint16)]


class _FuncDesc(Structure):
    _fields_ = [("id", c_int32), ("scodes", c_void_p), ("parameters", POINTER(_ElemDesc)),
                ("funckind", c_int32), ("kind", c_int32), ("callconv", c_int32),
                ("count", c_int16), ("optional", c_int16), ("offset", c_int16),
                ("scode_count", c_int16), ("result", _ElemDesc), ("flags", c_uint16)]


class _VarDesc(Structure):
    _fields_ = [("id", c_int32), ("schema", c_void_p), ("value", c_void_p), ("type", _ElemDesc),
                ("flags", c_uint16), ("kind", c_int32)]


class _TypeAttr(Structure):
    _fields_ = [("guid", ctypes.c_char * 16), ("lcid", c_uint32), ("reserved", c_uint32),
                ("constructor", c_int32), ("destructor", c_int32), ("schema", c_void_p),
                ("size", c_uint32), ("kind", c_int32), ("functions", c_uint16),
                ("variables", c_uint16), ("implemented", c_uint16), ("table_size", c_uint16),
                ("alignment", c_uint16), ("flags", c_uint16), ("major", c_uint16),
                ("minor", c_uint16), ("alias", _TypeDesc)]


_library_count = Operation(3, result=c_uint32)
_library_type = Operation(4, c_uint32, c_void_p)
_get_attributes = Operation(3, c_void_p)
_get_function = Operation(5, c_uint32, c_void_p)
_get_variable = Operation(6, c_uint32, c_void_p)
_get_names = Operation(7, c_int32, c_void_p, c_uint32, c_void_p)
_get_implemented = Operation(8, c_uint32, c_void_p)
_get_documentation = Operation(12, c_int32, c_void_p, c_void_p, c_void_p, c_void_p)
_get_referenced = Operation(14, c_uint32, c_void_p)
_release_attributes = Operation(19, c_void_p, result=None)
_release_function = Operation(20, c_void_p, result=None)
_release_variable = Operation(21, c_void_p, result=None)
_object_type = Operation(4, c_uint32, c_uint32, c_void_p)


class Parameter:
    """A parameter of a member; `vt` is the type in which its value travels."""

    def __init__(self, name, described, info):
        self.name = name
        self.flags = described.flags
        self.has_default = bool(described.flags & HAS_DEFAULT)
        self.default = values.load_at(described.default + 8) if self.has_default else None
        self.user_type = None  # a type of the library
        desc = described.type
        while desc.vt == values.VT_PTR:
            desc = desc.pointee.contents
        self.vt = desc.vt
        if desc.vt == values.VT_SAFEARRAY:
            self.vt = values.VT_ARRAY | desc.pointee.contents.vt
        elif desc.vt == values.VT_USERDEFINED:
            named = Type(made(_get_referenced, info, desc.reference)).resolved()
            self.user_type = types().get(named.name, named)
            self.vt = {ENUMERATION: values.VT_I4, RECORD: values.VT_RECORD}.get(
                named.kind, values.VT_DISPATCH)

    @property
    def enumeration(self):
        """The enumeration of Python that its values belong to, or None."""
        user = self.user_type
        return user.enumeration if user is not None and user.kind == ENUMERATION else None

    def convert(self, value):
        """A value that came through it, as a member of the enumeration where it is one."""
        known = self.enumeration
        return known(value) if known is not None and value in known._value2member_map_ else value

    @property
    def empty(self):
        """The type of a VARIANT that waits for its value."""
        return values.VT_EMPTY if self.vt == values.VT_VARIANT else self.vt

    @property
    def is_in(self):
        return bool(self.flags & IN) or not self.flags & OUT

    @property
    def is_out(self):
        """Whether the caller gets a value through it, the result aside."""
        return bool(self.flags & OUT) and not self.is_result and not self.is_address

    @property
    def is_result(self):
        return bool(self.flags & RESULT)

    @property
    def python_type(self):
        """The name of what travels through it in Python."""
        if self.enumeration is not None:
            return self.user_type.name
        if self.user_type is not None and self.user_type.kind == INTERFACE:
            return self.user_type.name.removeprefix("I")
        if self.vt & values.VT_ARRAY:
            return f"list[{_PYTHON_TYPES.get(self.vt & ~values.VT_ARRAY, 'object')}]"
        return _PYTHON_TYPES.get(self.vt, "object")

    @property
    def is_address(self):
        """`void*` and records travel as addresses of the caller's memory."""
        return self.vt in (values.VT_VOID, values.VT_RECORD) and not self.is_result


class Member:
    """A method, or the reading or writing of a property."""

    def __init__(self, name, identifier, kind, parameters):
        self.name = name
        self.id = identifier
        self.kind = kind
        self.result = parameters.pop() if parameters and parameters[-1].is_result else None
        self.parameters = parameters

    @property
    def inputs(self):
        return [parameter for parameter in self.parameters if parameter.is_in]

    @property
    def outputs(self):
        """What a call gives back: the result, then what comes through parameters."""
        return ([self.result] if self.result else []) + [p for p in self.parameters if p.is_out]

    @property
    def signature(self):
        """The input parameters as a `def` has them, and what comes back."""
        inputs = ", ".join(["self"] + [
            f"{python_name(p.name)}: {_PYTHON_TYPES.get(p.vt) or p.python_type}" +
            (f" = {p.default!r}" if p.has_default else "") for p in self.inputs])
        outputs = [p.python_type for p in self.outputs]
        given = outputs[0] if len(outputs) == 1 else f"tuple[{', '.join(outputs)}]"
        return f"({inputs}) -> {given if outputs else 'None'}"


def python_name(name):
    """A name of the library that may be a word of Python's."""
    return name + "_" if keyword.iskeyword(name) or name == "self" else name


class Type:
    """A class, interface, enumeration, record or alias."""

    def __init__(self, info):
        self.info = info
        self.name, self.help = self._documentation(_NIL)
        found = POINTER(_TypeAttr)()
        check(_get_attributes(info, ctypes.byref(found)))
        attributes = found.contents
        self.guid = bytes(ctypes.string_at(ctypes.addressof(attributes), 16))
        self.kind = attributes.kind
        self._functions = attributes.functions
        self._variables = attributes.variables
        self._implemented = attributes.implemented
        self._alias = attributes.alias.reference
        _release_attributes(info, found)

    def _documentation(self, member):
        name, text = c_void_p(), c_void_p()
        check(_get_documentation(self.info, member, ctypes.byref(name), ctypes.byref(text), None,
                                 None))
        return take_string(name.value), take_string(text.value)

    def resolved(self):
        """The type itself, or what it is another name for."""
        if self.kind != ALIAS:
            return self
        return Type(made(_get_referenced, self.info, self._alias)).resolved()

    @functools.cached_property
    def members(self):
        """Of an interface, in the order of its table."""
        members = []
        for index in range(self._functions):
            found = POINTER(_FuncDesc)()
            check(_get_function(self.info, index, ctypes.byref(found)))
            function = found.contents
            names = (c_void_p * (function.count + 1))()
            written = c_uint32()
            check(_get_names(self.info, function.id, names, len(names), ctypes.byref(written)))
            name, *parameters = [take_string(text) for text in names[:written.value]]
            # A writer's value has no name where the names are those of the reader.
            parameters += ["value"] * (function.count - len(parameters))
            members.append(Member(name, function.id, function.kind, [
                Parameter(parameters[i], function.parameters[i], self.info)
                for i in range(function.count)]))
            _release_function(self.info, found)
        return members

    @functools.cached_property
    def variables(self):
        """Names of an enumeration's constants or a record's fields; each with its value or None."""
        variables = {}
        for index in range(self._variables):
            found = POINTER(_VarDesc)()
            check(_get_variable(self.info, index, ctypes.byref(found)))
            constant = values.load_at(found.contents.value) if self.kind == ENUMERATION else None
            variables[self._documentation(found.contents.id)[0]] = constant
            _release_variable(self.info, found)
        return variables

    @functools.cached_property
    def enumeration(self):
        """An enumeration as one of Python."""
        return enum.IntEnum(self.name, self.variables, module=__package__)

    @functools.cached_property
    def interfaces(self):
        """Of a class: its default interface, then that of its events if it has any."""
        interfaces = []
        for index in range(self._implemented):
            reference = c_uint32()
            check(_get_implemented(self.info, index, ctypes.byref(reference)))
            interfaces.append(Type(made(_get_referenced, self.info, reference.value)))
        return interfaces


@functools.cache
def types():
    """The types of the library by their names, in its order."""
    opened = made(runtime.LoadTypeLib, runtime.wide(runtime.library_path()))
    found = [Type(made(_library_type, opened, i)) for i in range(_library_count(opened))]
    return {one.name: one for one in found}


def type_of(interface):
    """The type of an object by its `IDispatch`; None where it does not tell."""
    found = c_void_p()
    if _object_type(interface, 0, 0, ctypes.byref(found)) != 0 or not found.value:
        return None
    return Type(Reference(found.value))
