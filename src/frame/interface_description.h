#pragma once

#include <generalutilities/automation/type_information.h>
#include <generalutilities/interfaces/collections.h>
#include <generalutilities/interfaces/string_utils.h>

#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string_view>
#include <variant>
#include <vector>

/// One description of each interface, from which everything that is known of it at run time
/// follows: `GetIDsOfNames`, `Invoke`, type information, printed listings.
///
/// A method is described by its member pointer, its dispatch identifier, its name and its
/// arguments:
///
///     MakeMethod<&IStringUtils::ToIndex>(21, u"ToIndex", In(u"s"), In(u"LangID"),
///                                        In(u"cIndexSize", 50), Result(u"pVal"))
///
/// The C++ types of the arguments, and the place in the table of operations, come from the member
/// pointer; templates stay thin, and the work is done by ordinary code over the resulting tables.
namespace generalutilities {

/// What an argument is made of, as type information tells it.
struct ArgumentType {
    VARTYPE base = VT_EMPTY;  ///< VT_USERDEFINED for `userType`, VT_SAFEARRAY with `element`
    std::uint8_t pointers = 0;
    VARTYPE element = VT_EMPTY;
    const char16_t* userType = nullptr;  ///< name of a type of the library
    const IID* interfaceId = nullptr;    ///< of an interface pointer
    /// The type of the value when it travels in a VARIANT.
    VARTYPE transport = VT_EMPTY;
};

template <class Type>
struct ArgumentTypeOf;

#define GENERALUTILITIES_ARGUMENT_TYPE(type, ...)            \
    template <>                                              \
    struct ArgumentTypeOf<type> {                            \
        static constexpr ArgumentType Value = {__VA_ARGS__}; \
    }
GENERALUTILITIES_ARGUMENT_TYPE(std::int32_t, .base = VT_I4, .transport = VT_I4);
GENERALUTILITIES_ARGUMENT_TYPE(VARIANT_BOOL, .base = VT_BOOL, .transport = VT_BOOL);
GENERALUTILITIES_ARGUMENT_TYPE(double, .base = VT_R8, .transport = VT_R8);
GENERALUTILITIES_ARGUMENT_TYPE(BSTR, .base = VT_BSTR, .transport = VT_BSTR);
GENERALUTILITIES_ARGUMENT_TYPE(VARIANT, .base = VT_VARIANT, .transport = VT_VARIANT);
GENERALUTILITIES_ARGUMENT_TYPE(IUnknown*, .base = VT_UNKNOWN, .interfaceId = &IID_IUnknown,
                               .transport = VT_UNKNOWN);
GENERALUTILITIES_ARGUMENT_TYPE(ILongSet*, .base = VT_USERDEFINED, .pointers = 1,
                               .userType = u"ILongSet", .interfaceId = &IID_ILongSet,
                               .transport = VT_DISPATCH);
GENERALUTILITIES_ARGUMENT_TYPE(SAFEARRAY*, .base = VT_SAFEARRAY, .transport = VT_ARRAY);
GENERALUTILITIES_ARGUMENT_TYPE(void*, .base = VT_VOID, .pointers = 1, .transport = VT_I8);
GENERALUTILITIES_ARGUMENT_TYPE(WordTypeEnum, .base = VT_USERDEFINED, .userType = u"WordType",
                               .transport = VT_I4);
GENERALUTILITIES_ARGUMENT_TYPE(qlnCompareMethod, .base = VT_USERDEFINED,
                               .userType = u"CompareMethod", .transport = VT_I4);
GENERALUTILITIES_ARGUMENT_TYPE(tagRECT, .base = VT_USERDEFINED, .userType = u"tagRECT",
                               .transport = VT_RECORD);
#undef GENERALUTILITIES_ARGUMENT_TYPE

template <class Type>
struct ArgumentTypeOf<Type*> {
    static constexpr ArgumentType Value = [] {
        ArgumentType type = ArgumentTypeOf<Type>::Value;
        ++type.pointers;
        return type;
    }();
};

/// The declared default of an argument.
using DefaultValue = std::variant<std::monostate, std::int32_t, double, bool>;

/// Name, direction and default of an argument, as the description of a method gives them.
struct ArgumentName {
    const char16_t* name;
    std::uint16_t flags;  ///< PARAMFLAG_...
    DefaultValue defaultValue = {};
    VARTYPE element = VT_EMPTY;  ///< of an array

    constexpr ArgumentName Of(VARTYPE elementType) const {
        ArgumentName result = *this;
        result.element = elementType;
        return result;
    }
};

constexpr ArgumentName In(const char16_t* name) {
    return {name, PARAMFLAG_FIN};
}
constexpr ArgumentName In(const char16_t* name, DefaultValue defaultValue) {
    return {name, PARAMFLAG_FIN | PARAMFLAG_FOPT | PARAMFLAG_FHASDEFAULT, defaultValue};
}
constexpr ArgumentName Out(const char16_t* name) {
    return {name, PARAMFLAG_FOUT};
}
constexpr ArgumentName InOut(const char16_t* name) {
    return {name, PARAMFLAG_FIN | PARAMFLAG_FOUT};
}
constexpr ArgumentName Result(const char16_t* name) {
    return {name, PARAMFLAG_FOUT | PARAMFLAG_FRETVAL};
}

struct Argument : ArgumentName {
    ArgumentType type;

    bool IsResult() const { return (flags & PARAMFLAG_FRETVAL) != 0; }
    bool IsIn() const { return (flags & PARAMFLAG_FIN) != 0; }
    bool IsOptional() const { return (flags & PARAMFLAG_FOPT) != 0; }
};

/// The bits of one argument exactly as the method receives it: a number or a pointer.
struct ArgumentBits {
    std::uint64_t bits = 0;

    template <class Type>
    Type As() const {
        static_assert(sizeof(Type) <= sizeof bits);
        Type value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }
    template <class Type>
    static ArgumentBits Of(Type value) {
        static_assert(sizeof(Type) <= sizeof bits);
        ArgumentBits result;
        std::memcpy(&result.bits, &value, sizeof value);
        return result;
    }
};

struct Method {
    DISPID id;
    const char16_t* name;
    INVOKEKIND kind;
    std::vector<Argument> arguments;
    std::int16_t tableOffset = 0;  ///< bytes from the start of the table of operations
    /// Calls the method on an object's interface pointer; null for an event.
    HRESULT (*call)(void* instance, const ArgumentBits* arguments) = nullptr;
};

struct InterfaceDescription {
    const char16_t* name;
    const IID& iid;
    std::uint16_t typeFlags;  ///< TYPEFLAG_...
    std::vector<Method> methods;

    bool IsDual() const { return (typeFlags & TYPEFLAG_FDUAL) != 0; }
};

namespace description {

template <auto Member>
struct MemberOf;

template <class Interface, class... Types, HRESULT (Interface::*Member)(Types...) noexcept>
struct MemberOf<Member> {
    static constexpr std::size_t Count = sizeof...(Types);

    static std::vector<Argument> Arguments(const ArgumentName* names) {
        std::vector<Argument> arguments;
        std::size_t i = 0;
        (arguments.push_back({names[i++], ArgumentTypeOf<Types>::Value}), ...);
        for (Argument& argument : arguments) {
            if (argument.type.base == VT_SAFEARRAY) {
                argument.type.element = argument.element;
                argument.type.transport = static_cast<VARTYPE>(VT_ARRAY | argument.element);
            }
        }
        return arguments;
    }

    static HRESULT Call(void* instance, const ArgumentBits* arguments) {
        return CallWith(static_cast<Interface*>(instance), arguments,
                        std::index_sequence_for<Types...>());
    }

    /// A pointer to a virtual member holds one more than the byte offset in the table.
    static std::int16_t TableOffset() {
        const auto member = Member;
        std::intptr_t word;
        std::memcpy(&word, &member, sizeof word);
        return static_cast<std::int16_t>(word - 1);
    }

  private:
    template <std::size_t... Index>
    static HRESULT CallWith(Interface* instance, [[maybe_unused]] const ArgumentBits* arguments,
                            std::index_sequence<Index...>) {
        return (instance->*Member)(arguments[Index].template As<Types>()...);
    }
};

template <auto Member, class... Names>
Method Make(DISPID id, const char16_t* name, INVOKEKIND kind, const Names&... names) {
    using Described = MemberOf<Member>;
    static_assert(sizeof...(Names) == Described::Count, "a name for each argument");
    const ArgumentName list[] = {names..., ArgumentName{}};
    return {id, name, kind, Described::Arguments(list), Described::TableOffset(), &Described::Call};
}

}  // namespace description

template <auto Member, class... Names>
Method MakeMethod(DISPID id, const char16_t* name, const Names&... names) {
    return description::Make<Member>(id, name, INVOKE_FUNC, names...);
}
template <auto Member, class... Names>
Method MakeGetter(DISPID id, const char16_t* name, const Names&... names) {
    return description::Make<Member>(id, name, INVOKE_PROPERTYGET, names...);
}
template <auto Member, class... Names>
Method MakeSetter(DISPID id, const char16_t* name, const Names&... names) {
    return description::Make<Member>(id, name, INVOKE_PROPERTYPUT, names...);
}

/// An event of a pure dispatch interface, whose arguments are all `long`.
Method MakeEvent(DISPID id, const char16_t* name, std::initializer_list<const char16_t*> arguments);

/// Names compare without regard to the case of A to Z.
bool SameName(std::u16string_view a, std::u16string_view b);

/// Finds a method by dispatch identifier and by any of the kinds (INVOKEKIND bits).
const Method* FindMethod(const InterfaceDescription& interface, DISPID id, std::uint16_t kinds);

/// `GetIDsOfNames` of the interface: a member, then arguments of it (numbered from 0).
HRESULT FindIds(const InterfaceDescription& interface, char16_t** names, std::uint32_t count,
                DISPID* ids);

}  // namespace generalutilities
