// The shared cases by direct calls and by late binding.

#include <generalutilities/automation/pointers.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/code_page_helper.h>
#include <generalutilities/interfaces/collections.h>
#include <generalutilities/interfaces/draw_text.h>
#include <generalutilities/interfaces/ext_view_helper.h>
#include <generalutilities/interfaces/itd.h>
#include <generalutilities/interfaces/string_utils.h>

#include "case_table.h"

#include <cstring>
#include <functional>
#include <map>

namespace generalutilities {
namespace {

using Cells = std::vector<std::u16string>;

VARIANT Borrowed(const Bstr& text) {
    VARIANT value{};
    value.vt = VT_BSTR;
    value.bstrVal = text.Get();
    return value;
}

std::u16string Shown(const VARIANT& value) {
    Variant text;
    EXPECT_EQ(VariantChangeType(text.InOut(), &value, 0, VT_BSTR), S_OK);
    const BSTR units = text.Get().bstrVal;
    return units == nullptr ? u"" : std::u16string(units, SysStringLen(units));
}

/// The value behind the type of `value`, as the method takes it: itself or its address.
template <class Type>
Type Give(VARIANT& value) {
    if constexpr (std::is_same_v<Type, VARIANT*>) {
        return &value;
    } else if constexpr (std::is_pointer_v<Type> && !std::is_same_v<Type, BSTR>) {
        return reinterpret_cast<Type>(&value.llVal);
    } else {
        Type plain;
        std::memcpy(&plain, &value.llVal, sizeof plain);
        return plain;
    }
}

template <class Type>
constexpr VARTYPE TypeOf = VT_I4;
template <>
constexpr VARTYPE TypeOf<char16_t> = VT_BSTR;
template <>
constexpr VARTYPE TypeOf<BSTR> = VT_BSTR;
template <>
constexpr VARTYPE TypeOf<VARIANT> = VT_BSTR;  // the cells of variants are texts
template <>
constexpr VARTYPE TypeOf<double> = VT_R8;
template <>
constexpr VARTYPE TypeOf<VARIANT_BOOL> = VT_BOOL;

/// Calls a method through the table of its interface; the cells become what its arguments are.
template <auto Member>
struct Direct;
template <class Interface, class... Types, HRESULT (Interface::*Member)(Types...) noexcept>
struct Direct<Member> {
    static std::u16string Call(IDispatch* object, const Cells& cells) {
        constexpr std::size_t Count = sizeof...(Types);
        const VARTYPE types[] = {TypeOf<std::remove_pointer_t<Types>>..., VT_EMPTY};
        const bool changes[] = {std::is_same_v<Types, std::int32_t*>..., false};
        const bool enumerations[] = {std::is_same_v<Types, WordTypeEnum*>..., false};
        Variant values[Count + 1];
        for (std::size_t i = 0; i < Count; ++i) {
            if (i < cells.size()) {
                const Bstr text(cells[i]);
                const VARIANT source = Borrowed(text);
                EXPECT_EQ(VariantChangeType(values[i].InOut(), &source, 0, types[i]), S_OK);
            } else {
                values[i].InOut()->vt = types[i];
            }
        }
        const HRESULT status = [&]<std::size_t... Index>(std::index_sequence<Index...>) {
            return (static_cast<Interface*>(object)->*Member)(
                Give<Types>(*values[Index].InOut())...);
        }
        (std::index_sequence_for<Types...>());
        EXPECT_EQ(status, S_OK);
        std::u16string answer = Count > cells.size() ? Shown(values[Count - 1].Get()) : u"";
        for (std::size_t i = 0; i < cells.size(); ++i) {
            answer += changes[i] || enumerations[i] ? u" | " + Shown(values[i].Get()) : u"";
        }
        return answer;
    }
};

/// Sorts the words of a cell, in ascending order, with a function behind a handle.
template <class Sort>
std::u16string SortWords(const std::u16string& cell, Sort sort) {
    std::vector<std::u16string> words(1);
    for (const char16_t unit : cell) {
        unit == u' ' ? void(words.emplace_back()) : void(words.back() += unit);
    }
    SAFEARRAY* array = SafeArrayCreateVector(VT_BSTR, 0, static_cast<std::uint32_t>(words.size()));
    auto** const strings = static_cast<BSTR*>(array->pvData);
    for (std::size_t i = 0; i < words.size(); ++i) {
        strings[i] = Bstr(words[i]).Release();
    }
    const std::int32_t handle = HandleFromPointer(
        reinterpret_cast<void*>(+[](const void* a, const void* b) -> std::int32_t {
            return std::u16string_view(*static_cast<const BSTR*>(a))
                .compare(*static_cast<const BSTR*>(b));
        }));
    EXPECT_EQ(sort(&array, handle), S_OK);
    ReleaseHandle(handle);
    std::u16string sorted;
    for (std::size_t i = 0; i < words.size(); ++i) {
        sorted += (i == 0 ? u"" : u" ") + std::u16string(strings[i]);
    }
    SafeArrayDestroy(array);
    return sorted;
}

std::u16string SortDirectly(IDispatch* object, const Cells& cells) {
    return SortWords(cells[0], [&](SAFEARRAY** array, std::int32_t handle) {
        return static_cast<IQLNSort*>(object)->StringSort(array, handle);
    });
}

HRESULT SortLate(IDispatch* object, DISPID id, SAFEARRAY** array, std::int32_t handle) {
    VARIANT arguments[2]{};
    arguments[1].vt = VT_BYREF | VT_ARRAY | VT_BSTR;
    arguments[1].pparray = array;
    arguments[0].vt = VT_I4;
    arguments[0].lVal = handle;
    DISPPARAMS parameters{arguments, nullptr, 2, 0};
    return object->Invoke(id, GUID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, nullptr,
                          nullptr);
}

const std::map<std::u16string, std::u16string (*)(IDispatch*, const Cells&)> DirectCalls = {
    {u"StringUtils.ToUpper", Direct<&IStringUtils::ToUpper>::Call},
    {u"StringUtils.ToLower", Direct<&IStringUtils::ToLower>::Call},
    {u"StringUtils.DeAccentString", Direct<&IStringUtils::DeAccentString>::Call},
    {u"StringUtils.DeAccentUpperCaseString", Direct<&IStringUtils::DeAccentUpperCaseString>::Call},
    {u"StringUtils.SimplifyString", Direct<&IStringUtils::SimplifyString>::Call},
    {u"StringUtils.FoldDigits", Direct<&IStringUtils::FoldDigits>::Call},
    {u"StringUtils.ToIndex", Direct<&IStringUtils::ToIndex>::Call},
    {u"StringUtils.EditDistance", Direct<&IStringUtils::EditDistance>::Call},
    {u"StringUtils.Instr", Direct<&IStringUtils::Instr>::Call},
    {u"StringUtils.ParseString", Direct<&IStringUtils::ParseString>::Call},
    {u"StringUtils.IsStringInCodePage", Direct<&IStringUtils::IsStringInCodePage>::Call},
    {u"StringUtils.GetLangNativeName", Direct<&IStringUtils::GetLangNativeName>::Call},
    {u"StringUtils.ConvertStringToUnicode", Direct<&IStringUtils::ConvertStringToUnicode>::Call},
    {u"LongSet.Add", Direct<&ILongSet::Add>::Call},
    {u"LongSet.Count", Direct<&ILongSet::get_Count>::Call},
    {u"LongSet.Item", Direct<&ILongSet::get_Item>::Call},
    {u"LongStack.Push", Direct<&ILongStack::Push>::Call},
    {u"LongStack.Pop", Direct<&ILongStack::Pop>::Call},
    {u"LongStack.Peek", Direct<&ILongStack::Peek>::Call},
    {u"LongStack.Contains", Direct<&ILongStack::Contains>::Call},
    {u"qlnDictionary.Add", Direct<&IQLNDictionary::Add>::Call},
    {u"qlnDictionary.Item", Direct<&IQLNDictionary::get_Item>::Call},
    {u"qlnDictionary.Exists", Direct<&IQLNDictionary::Exists>::Call},
    {u"qlnDictionary.Count", Direct<&IQLNDictionary::get_Count>::Call},
    {u"CodePageHelper.AddCodePage", Direct<&ICodePageHelper::AddCodePage>::Call},
    {u"CodePageHelper.AddFonts", Direct<&ICodePageHelper::AddFonts>::Call},
    {u"ExtViewHelper.IsFileRTF", Direct<&IExtViewHelper::IsFileRTF>::Call},
    {u"ITDReader.OpenITDFile", Direct<&IITDReader::OpenITDFile>::Call},
    {u"ITDReader.SourceLanguage", Direct<&IITDReader::get_SourceLanguage>::Call},
    {u"ITDReader.TargetLanguage", Direct<&IITDReader::get_TargetLanguage>::Call},
    {u"ITDReader.SegmentCount", Direct<&IITDReader::get_SegmentCount>::Call},
    {u"ITDReader.Restart", Direct<&IITDReader::Restart>::Call},
    {u"ITDReader.Next", Direct<&IITDReader::Next>::Call},
    {u"ITDReader.SourceText", Direct<&IITDReader::get_SourceText>::Call},
    {u"ITDReader.TargetText", Direct<&IITDReader::get_TargetText>::Call},
    {u"ITDReader.SourceCodeCount", Direct<&IITDReader::get_SourceCodeCount>::Call},
    {u"ITDReader.SourceCode", Direct<&IITDReader::get_SourceCode>::Call},
    {u"ITDReader.Comment", Direct<&IITDReader::get_Comment>::Call},
    {u"ITDReader.Status", Direct<&IITDReader::get_Status>::Call},
    {u"ITDReader.Score", Direct<&IITDReader::get_Score>::Call},
    {u"ITDWriter.OpenReferenceITD", Direct<&IITDWriter::OpenReferenceITD>::Call},
    {u"ITDWriter.TargetLanguage", Direct<&IITDWriter::get_TargetLanguage>::Call},
    {u"ITDWriter.SegmentCount", Direct<&IITDWriter::get_SegmentCount>::Call},
    {u"QLNSort.StringSort", SortDirectly},
    {u"UDrawText.GetTextWidth", Direct<&IUDrawText::GetTextWidth>::Call},
};

/// Every argument goes as a text by reference; what the method writes replaces it.
std::u16string CallLate(IDispatch* object, std::u16string member, const Cells& cells) {
    DISPID id = DISPID_UNKNOWN;
    char16_t* name = member.data();
    EXPECT_EQ(object->GetIDsOfNames(GUID_NULL, &name, 1, 0, &id), S_OK);
    if (member == u"StringSort") {
        return SortWords(cells[0], [&](SAFEARRAY** array, std::int32_t handle) {
            return SortLate(object, id, array, handle);
        });
    }
    std::vector<Variant> values(cells.size());
    std::vector<VARIANT> arguments(cells.size());
    for (std::size_t i = 0; i < cells.size(); ++i) {
        *values[i].InOut() = Borrowed(Bstr());
        values[i].InOut()->bstrVal = Bstr(cells[i]).Release();
        VARIANT& argument = arguments[cells.size() - 1 - i];
        argument.vt = VT_BYREF | VT_VARIANT;
        argument.pvarVal = values[i].InOut();
    }
    DISPPARAMS parameters{arguments.data(), nullptr, static_cast<std::uint32_t>(cells.size()), 0};
    Variant result;
    EXPECT_EQ(object->Invoke(id, GUID_NULL, 0, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &parameters,
                             result.Out(), nullptr, nullptr),
              S_OK);
    std::u16string answer = Shown(result.Get());
    for (const Variant& value : values) {
        answer += value.Get().vt != VT_BSTR ? u" | " + Shown(value.Get()) : u"";
    }
    return answer;
}

ComPtr<IDispatch> Create(const std::u16string& name) {
    static const std::map<std::u16string, CLSID> Classes = {
        {u"StringUtils", CLSID_StringUtils},
        {u"LongSet", CLSID_LongSet},
        {u"LongStack", CLSID_LongStack},
        {u"qlnDictionary", CLSID_qlnDictionary},
        {u"CodePageHelper", CLSID_CodePageHelper},
        {u"ExtViewHelper", CLSID_ExtViewHelper},
        {u"ITDReader", CLSID_ITDReader},
        {u"ITDWriter", CLSID_ITDWriter},
        {u"QLNSort", CLSID_QLNSort},
        {u"UDrawText", CLSID_UDrawText}};
    ComPtr<IDispatch> object;
    EXPECT_EQ(CoCreateInstance(Classes.at(name), nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                               object.OutVoid()),
              S_OK);
    return object;
}

TEST(Doors, AnswerAlike) {
    using Call = std::function<std::u16string(IDispatch*, const Cells&, const Cells&)>;
    const std::pair<const char*, Call> doors[] = {
        {"direct",
         [](IDispatch* object, const Cells& row, const Cells& cells) {
             return DirectCalls.at(row[0] + u"." + row[1])(object, cells);
         }},
        {"Invoke", [](IDispatch* object, const Cells& row,
                      const Cells& cells) { return CallLate(object, row[1], cells); }},
    };
    const std::u16string folder = std::filesystem::path(TEST_DATA_DIR).u16string();
    for (const auto& [door, call] : doors) {
        ComPtr<IDispatch> object;
        std::u16string className;
        for (const Cells& row : CaseTable("cases.tsv")) {
            if (row[0] != className) {
                className = row[0];
                object = Create(className);
            }
            Cells cells(row.begin() + 4, row.end());
            for (std::u16string& cell : cells) {
                if (cell.starts_with(u"{data}")) {
                    cell.replace(0, 6, folder);
                }
            }
            EXPECT_TRUE(row[2] == call(object.Get(), row, cells))
                << door << " " << std::filesystem::path(row[0] + u"." + row[1]) << " "
                << testing::PrintToString(cells);
        }
    }
}

}  // namespace
}  // namespace generalutilities
