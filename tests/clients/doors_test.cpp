// The shared cases by direct calls and by late binding.

#include <generalutilities/automation/dictionary.h>
#include <generalutilities/automation/pointers.h>

#include "case_table.h"
#include "described_classes.h"

namespace generalutilities {
namespace {

using Text = std::u16string;
using Cells = std::vector<Text>;

Cells Split(const Text& cell) {
    Cells words(1);
    for (const char16_t unit : cell) {
        unit == u' ' ? void(words.emplace_back()) : void(words.back() += unit);
    }
    return words;
}

Text Joined(const Cells& parts, const Text& between) {
    Text joined;
    for (const Text& part : parts) {
        joined += (&part == &parts.front() ? u"" : between) + part;
    }
    return joined;
}

/// A value as a text; the elements of an array or a collection with blanks between them.
Text Shown(const VARIANT& value) {
    Cells elements;
    if ((value.vt & VT_ARRAY) != 0) {
        VARTYPE type = VT_EMPTY;
        SafeArrayGetVartype(value.parray, &type);
        const SAFEARRAY& array = *value.parray;
        for (std::uint32_t i = 0; i < array.rgsabound[0].cElements; ++i) {
            const char* const place = static_cast<const char*>(array.pvData) + i * array.cbElements;
            VARIANT element{};
            element.vt = type;
            std::memcpy(type == VT_VARIANT ? static_cast<void*>(&element) : &element.llVal, place,
                        array.cbElements);
            elements.push_back(Shown(element));
        }
        return Joined(elements, u" ");
    }
    if (value.vt == VT_UNKNOWN || value.vt == VT_DISPATCH) {
        const auto object = ComPtr<IUnknown>::Share(value.punkVal);
        auto values = object.As<IEnumVARIANT>(IID_IEnumVARIANT);
        if (const auto set = object.As<ILongSet>(IID_ILongSet)) {
            ComPtr<IUnknown> walk;
            set->get__NewEnum(walk.Out());
            values = walk.As<IEnumVARIANT>(IID_IEnumVARIANT);
        }
        for (Variant next; values && values->Next(1, next.Out(), nullptr) == S_OK;) {
            elements.push_back(Shown(next.Get()));
        }
        return Joined(elements, u" ");
    }
    Variant text;
    EXPECT_EQ(VariantChangeType(text.InOut(), &value, 0, VT_BSTR), S_OK);
    const BSTR units = text.Get().bstrVal;
    return units == nullptr ? u"" : Text(units, SysStringLen(units));
}

std::int32_t CompareLongs(const void* a, const void* b) {
    return *static_cast<const std::int32_t*>(a) - *static_cast<const std::int32_t*>(b);
}
std::int32_t CompareStrings(const void* a, const void* b) {
    return std::u16string_view(*static_cast<const BSTR*>(a)).compare(*static_cast<const BSTR*>(b));
}

std::int32_t Raise(const void*, const void*) {
    throw std::runtime_error("raised");
}

/// One call of a member with the cells of a row, which are texts or stand for what the head of the
/// table says.
class RowCall {
  public:
    RowCall(IDispatch* target, const Method& called, const Cells& cells)
        : object(target), method(called), values(called.arguments.size()) {
        auto cell = cells.begin();
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (method.arguments[i].IsIn() && cell != cells.end()) {
                Fill(values[i].InOut(), *cell++, method.arguments[i].type.transport);
            }
        }
        SetErrorInfo(0, nullptr);
    }
    ~RowCall() { ReleaseHandle(compare); }

    /// Through the table of the interface; each value has the type that its argument declares.
    Text Direct() {
        std::vector<ArgumentBits> bits;
        for (std::size_t i = 0; i < values.size(); ++i) {
            const ArgumentType& type = method.arguments[i].type;
            VARIANT* const value = values[i].InOut();
            const bool isPointer = type.transport == VT_DISPATCH || type.transport == VT_RECORD ||
                                   type.base == VT_VOID;
            if (value->vt == VT_EMPTY) {
                value->vt = type.transport == VT_VARIANT ? VARTYPE{VT_EMPTY} : type.transport;
            } else if (value->vt == VT_BSTR && type.transport != VT_VARIANT) {
                EXPECT_EQ(VariantChangeType(value, value, 0, type.transport), S_OK);
            }
            bits.push_back(type.transport == VT_VARIANT          ? ArgumentBits::Of(value)
                           : type.pointers > (isPointer ? 1 : 0) ? ArgumentBits::Of(&value->llVal)
                                                                 : ArgumentBits{value->ullVal});
        }
        const HRESULT status = method.call(object, bits.data());
        ComPtr<IErrorInfo> error;
        Bstr words;
        if (GetErrorInfo(0, error.Out()) == S_OK) {
            error->GetDescription(words.Out());
        }
        return Answer(status, words.Text());
    }

    /// Through `Invoke`, each value a text by reference that the library converts.
    Text Late() {
        Text name = method.name;
        char16_t* names = name.data();
        DISPID id = DISPID_UNKNOWN, put = DISPID_PROPERTYPUT;
        EXPECT_EQ(object->GetIDsOfNames(GUID_NULL, &names, 1, 0, &id), S_OK);
        std::vector<VARIANT> arguments;
        VARIANT* result = nullptr;
        for (std::size_t i = values.size(); i-- > 0;) {
            VARIANT* const value = values[i].InOut();
            if (method.arguments[i].IsResult()) {
                result = value;
                continue;
            }
            arguments.push_back(*value);
            if ((value->vt & VT_BYREF) == 0) {
                arguments.back().vt = VT_BYREF | VT_VARIANT;
                arguments.back().pvarVal = value;
            }
        }
        DISPPARAMS parameters{arguments.data(), &put, static_cast<std::uint32_t>(arguments.size()),
                              method.kind == INVOKE_PROPERTYPUT ? 1U : 0U};
        EXCEPINFO told{};
        const HRESULT status =
            object->Invoke(id, GUID_NULL, 0, static_cast<std::uint16_t>(method.kind), &parameters,
                           result, &told, nullptr);
        Bstr words, source;
        *words.Out() = told.bstrDescription;
        *source.Out() = told.bstrSource;
        return Answer(status == DISP_E_EXCEPTION ? told.scode : status, words.Text());
    }

  private:
    void Fill(VARIANT* value, const Text& cell, VARTYPE type) {
        const std::size_t end = cell.starts_with(u'{') ? cell.find(u'}') : Text::npos;
        const Text kind = cell.substr(0, end == Text::npos ? 0 : end + 1);
        if (kind == u"{compare}" || kind == u"{raise}") {
            const auto function = kind == u"{raise}"                   ? Raise
                                  : Text(method.name) == u"StringSort" ? CompareStrings
                                                                       : CompareLongs;
            compare = HandleFromPointer(reinterpret_cast<void*>(function));
            value->vt = VT_I4;
            value->lVal = compare;
        } else if (kind == u"{this}") {
            value->vt = VT_DISPATCH;
            value->pdispVal = ComPtr<IDispatch>::Share(object).Release();
        } else if (kind == u"{none}") {
            value->vt = VT_UNKNOWN;
        } else if (kind == u"{project}") {
            value->vt = VT_UNKNOWN;
            EXPECT_EQ(OpenProjectDatabase(cell.c_str() + kind.size(), &value->punkVal), S_OK);
        } else if (kind == u"{targets}") {
            CoCreateInstance(CLSID_Dictionary, nullptr, CLSCTX_INPROC_SERVER, IID_IDictionary,
                             targets.OutVoid());
            value->vt = VT_UNKNOWN;
            value->punkVal = ComPtr<IUnknown>::Share(targets.Get()).Release();
            for (const Text& word : Split(cell.substr(kind.size()))) {
                Variant item;
                Fill(item.InOut(), word, VT_BSTR);
                targets->Add(item.InOut(), item.InOut());
            }
        } else if (type == VT_I8 || type == VT_RECORD) {
            for (const Text& word : Split(cell)) {
                memory.push_back(Number(word));
            }
            value->vt = VT_BYREF | VT_I4;
            value->byref = memory.data();
        } else if (type == (VT_ARRAY | VT_BSTR)) {
            const Cells words = Split(cell);
            const auto count = static_cast<std::uint32_t>(words.size());
            value->vt = type;
            value->parray = SafeArrayCreateVector(VT_BSTR, 0, count);
            for (std::int32_t i = 0; i < static_cast<std::int32_t>(count); ++i) {
                SafeArrayPutElement(value->parray, &i, Bstr(words[i]).Get());
            }
        } else {
            value->vt = VT_BSTR;
            value->bstrVal = Bstr(cell).Release();
        }
    }

    /// The result, then what came through arguments.
    Text Answer(HRESULT status, const Text& words) const {
        if (Failed(status)) {
            char text[16];
            std::snprintf(text, sizeof text, "!%08X", static_cast<unsigned>(status));
            return Text(text, text + std::strlen(text)) + (words.empty() ? u"" : u" " + words);
        }
        Cells parts;
        for (std::size_t i = 0; i < values.size(); ++i) {
            const Argument& argument = method.arguments[i];
            if (argument.IsResult()) {
                parts.insert(parts.begin(), Shown(values[i].Get()));
            } else if ((argument.flags & PARAMFLAG_FOUT) != 0) {
                parts.push_back(memory.empty() ? Shown(values[i].Get()) : ShownMemory());
            }
        }
        if (targets) {
            Variant items;
            targets->Items(items.Out());
            parts.push_back(Shown(items.Get()));
        }
        return status == S_OK ? Joined(parts, u" | ") : u"∅";
    }

    Text ShownMemory() const {
        std::string numbers = testing::PrintToString(memory);  // { -2, 4 }
        std::erase_if(numbers, [](char c) { return c == '{' || c == '}' || c == ','; });
        return Text(numbers.begin() + 1, numbers.end() - 1);
    }

    IDispatch* object;
    const Method& method;
    std::vector<Variant> values;
    std::vector<std::int32_t> memory;
    ComPtr<IDictionary> targets;
    std::int32_t compare = 0;
};

const Method& Find(const InterfaceDescription& interface, const Text& member) {
    for (const Method& method : interface.methods) {
        if (member == method.name + Text(method.kind == INVOKE_PROPERTYPUT ? u"=" : u"")) {
            return method;
        }
    }
    throw std::invalid_argument(std::filesystem::path(member).string());
}

TEST(Doors, AnswerAlike) {
    const std::filesystem::path data = TEST_DATA_DIR;
    for (const auto door : {&RowCall::Direct, &RowCall::Late}) {
        const TemporaryFolder copies;
        std::filesystem::copy(data, copies.Path());
        ComPtr<IDispatch> object;
        Text className;
        for (Cells row : CaseTable("cases.tsv")) {
            SCOPED_TRACE((door == &RowCall::Late ? "Invoke " : "direct ") +
                         testing::PrintToString(row));
            for (Text& cell : row) {
                for (const auto& [name, folder] :
                     {std::pair(u"{data}", data), std::pair(u"{copy}", copies.Path())}) {
                    if (const std::size_t at = cell.find(name); at != Text::npos) {
                        cell.replace(at, 6, folder.u16string());
                    }
                }
            }
            if (row[0] == u"=") {
                EXPECT_TRUE(row[3] != u"-" || ReadFile(row[1]) == ReadFile(row[2]));
                continue;
            }
            const auto& [clsid, describe] = DescribedClasses.at(row[0]);
            if (row[0] != className) {
                className = row[0];
                ASSERT_EQ(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                           object.OutVoid()),
                          S_OK);
            }
            RowCall call(object.Get(), Find(describe(), row[1]), Cells(row.begin() + 4, row.end()));
            const Text answer = (call.*door)();
            EXPECT_EQ(row[2] == u"…" && !answer.starts_with(u'!') ? row[2] : answer, row[2]);
        }
    }
}

}  // namespace
}  // namespace generalutilities
