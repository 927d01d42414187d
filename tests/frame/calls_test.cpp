// Methods called straight through their tables, as lists in data/ have them.

#include "case_table.h"
#include "described_classes.h"
#include "itd/sample_file.h"
#include "values.h"

#include <cstring>
#include <map>

namespace generalutilities {
namespace {

constexpr std::int64_t Before = 0x5A5A5A5A5A5A5A5A;  ///< what no method may have written

const std::map<std::u16string, HRESULT> Statuses = {{u"ok", S_OK},
                                                    {u"no", S_FALSE},
                                                    {u"null", E_POINTER},
                                                    {u"wrong", E_INVALIDARG},
                                                    {u"failed", E_FAIL}};

/// A cell as a value of a type. "8:x" stands for a VARIANT of type 8, and any short integer for a
/// yes/no value.
VARIANT Read(const std::u16string& cell, VARTYPE type) {
    VARIANT value{};
    if (type == VT_VARIANT && cell != u"∅") {
        return Read(cell.substr(cell.find(u':') + 1), static_cast<VARTYPE>(Number(cell)));
    }
    if (cell.starts_with(u"bytes:")) {
        const std::string bytes = Bytes(cell.substr(6));
        value = Of(VT_BSTR);
        value.bstrVal =
            SysAllocStringByteLen(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    } else if (cell != u"∅") {
        const Bstr text(cell);
        const VARIANT source = Borrowed(text);
        EXPECT_EQ(VariantChangeType(&value, &source, 0, type == VT_BOOL ? VARTYPE{VT_I2} : type),
                  S_OK);
    }
    value.vt = type == VT_VARIANT ? VARTYPE{VT_EMPTY} : type;
    return value;
}

/// A value as a cell, in the form of the one that is expected.
std::u16string Show(VARIANT value, const std::u16string& expected) {
    if (value.llVal == Before) {
        return u"=";
    }
    if (value.vt == VT_BSTR && expected.starts_with(u"bytes:")) {
        std::u16string bytes = u"bytes:";
        for (std::uint32_t i = 0; i < SysStringByteLen(value.bstrVal); ++i) {
            bytes += reinterpret_cast<const unsigned char*>(value.bstrVal)[i];
        }
        return bytes;
    }
    if ((value.vt & VT_ARRAY) != 0) {
        const SAFEARRAY& array = *value.parray;
        const SAFEARRAYBOUND& bound = array.rgsabound[0];
        VARIANT element{};
        EXPECT_EQ(SafeArrayGetVartype(value.parray, &element.vt), S_OK);
        std::u16string all = Text(Long(element.vt));
        all += bound.lLbound == 0 ? u"" : u"/" + Text(Long(bound.lLbound));
        const bool isVariant = element.vt == VT_VARIANT;
        for (std::uint32_t i = 0; i < bound.cElements; ++i) {
            std::memcpy(isVariant ? static_cast<void*>(&element) : &element.llVal,
                        static_cast<char*>(array.pvData) + i * array.cbElements, array.cbElements);
            all += u" " + Text(element);
        }
        return all;
    }
    value.vt = value.vt == VT_BOOL ? VARTYPE{VT_I2} : value.vt;
    return value.vt == VT_BSTR && value.bstrVal == nullptr ? u"∅" : Text(value);
}

/// Calls with the cells, of which each has what goes in, and behind an arrow what has come out.
HRESULT Call(IUnknown* object, const Method& method, std::u16string* cells) {
    VARIANT values[16] = {};
    ArgumentBits bits[16];
    const std::size_t count = method.arguments.size();
    for (std::size_t i = 0; i < count; ++i) {
        const ArgumentType& type = method.arguments[i].type;
        const std::size_t arrow = cells[i].find(u'→');
        if (cells[i].ends_with(u"→=")) {
            values[i].llVal = Before;
        } else if (arrow != 0) {
            values[i] = Read(cells[i].substr(0, arrow), type.transport);
        }
        bits[i] = type.pointers == 0             ? ArgumentBits::Of(values[i].llVal)
                  : cells[i] == u"∅"             ? ArgumentBits()
                  : type.transport == VT_VARIANT ? ArgumentBits::Of(&values[i])
                                                 : ArgumentBits::Of(&values[i].llVal);
    }
    const HRESULT status = method.call(object, bits);
    for (std::size_t i = 0; i < count; ++i) {
        const VARTYPE type = method.arguments[i].type.transport;
        values[i].vt = type == VT_VARIANT ? values[i].vt : type;
        if (const std::size_t arrow = cells[i].find(u'→'); arrow != cells[i].npos) {
            const std::u16string expected = cells[i].substr(arrow + 1);
            cells[i] = cells[i].substr(0, arrow + 1) + Show(values[i], expected);
        }
        if (values[i].llVal != Before) {
            VariantClear(&values[i]);
        }
    }
    return status;
}

class Calls : public testing::TestWithParam<const char*> {};

TEST_P(Calls, AnswerAsListed) {
    ComPtr<IUnknown> object;
    std::u16string name;
    const TemporaryFolder folder;  // with documents
    const std::u16string data = std::filesystem::path(TEST_DATA_DIR).u16string();
    for (const char16_t* const document : {u"a.itd", u"target-first.itd", u"copy.itd"}) {
        WriteItdFile(folder.Path(document), SampleTextPart(document[0] == u't'));
    }
    for (auto row : CaseTable(GetParam())) {
        for (std::u16string& cell : row) {
            cell = cell.starts_with(u"{data}")     ? data + cell.substr(6)
                   : cell.starts_with(u"{folder}") ? folder.Path(cell.substr(9).c_str())
                                                   : cell;
        }
        SCOPED_TRACE(testing::PrintToString(row));
        if (!row[0].empty()) {
            name = row[0];
            object = Create<IUnknown>(DescribedClasses.at(name).first,
                                      DescribedClasses.at(name).second().iid);
        }
        const bool isSetter = row[1].starts_with(u"put ");
        const auto& methods = DescribedClasses.at(name).second().methods;
        const auto method = std::ranges::find_if(methods, [&](const Method& each) {
            return (each.kind == INVOKE_PROPERTYPUT) == isSetter &&
                   each.name == row[1].substr(isSetter ? 4 : 0);
        });
        ASSERT_NE(method, methods.end());
        ASSERT_EQ(row.size(), 3 + method->arguments.size());
        auto answer = row;
        EXPECT_EQ(Call(object.Get(), *method, answer.data() + 3), Statuses.at(row[2]));
        EXPECT_EQ(answer, row);
    }
}
INSTANTIATE_TEST_SUITE_P(Lists, Calls, testing::Values("calls.tsv", "dictionary_orders.tsv"));

}  // namespace
}  // namespace generalutilities
