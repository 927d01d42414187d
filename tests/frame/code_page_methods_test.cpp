// The code page methods of `StringUtils`, through the exports of the library.

#include <generalutilities/automation/pointers.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/string_utils.h>

#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace generalutilities {
namespace {

class CodePageMethods : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(CoCreateInstance(CLSID_StringUtils, nullptr, CLSCTX_INPROC_SERVER,
                                   IID_IStringUtils, utils.OutVoid()),
                  S_OK);
    }
    ComPtr<IStringUtils> utils;
};

/// A string with this memory.
Bstr Bytes(std::string_view bytes) {
    Bstr string;
    *string.Out() = SysAllocStringByteLen(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    return string;
}

std::string_view MemoryOf(const Bstr& string) {
    return {reinterpret_cast<const char*>(string.Get()), SysStringByteLen(string.Get())};
}

TEST_F(CodePageMethods, DecodesByteStringsInThreeForms) {
    const struct {
        std::int32_t codePage;
        Bstr in;
        VARIANT_BOOL raw, widened;
        std::u16string_view out;
    } cases[] = {
        {1251, Bstr(u"\u00C0"), 0, 0, u"\u0410"},
        {1251, Bstr(u"\u00C0"), 0, -1, u"\u0410"},
        {1251, Bstr(u"\u01C0"), 0, -1, u"\u0410"},  // the high half is ignored
        {1251, Bstr(u"\u01C0"), 0, 0, u"?"},        // not in the ANSI code page
        {1251, Bstr(u"\u20AC"), 0, 1, u"\u0402"},   // 1 is not true: by 1252, the byte 0x80
        {1251, Bytes("\xC0\xC1\xC2"), -1, -1, u"\u0410\u0411\u0412"},
        {1251, Bytes("\xC0\xC1\xC2"), 1, -1, u"\u0410"},  // nor here: one unit, widened
        {932, Bytes("\x83\x65\x83"), -1, 0, u"\u30C6\uFFFD"},
        {932, Bytes("\x65"), -1, 0, u"e"},  // half a character did not wait
        {50220, Bytes("\x1B$BF|"), -1, 0, u"\u65E5"},
        {50220, Bytes("F|"), -1, 0, u"F|"},  // nor did an escape sequence
        {1200, Bstr(std::u16string_view(u"ab\0c", 4)), 0, 0, u"ab"},
        {0, Bytes("ab\x80"), -1, -1, u"\u6261\u0080"},
        {50000, Bstr(u""), 0, -1, u""},
    };
    for (const auto& test : cases) {
        Bstr out;
        EXPECT_EQ(utils->ConvertStringToUnicode(test.codePage, test.in.Get(), test.raw,
                                                test.widened, out.Out()),
                  S_OK);
        EXPECT_EQ(out.View(), test.out) << test.codePage;
        EXPECT_NE(out.Get(), nullptr);
    }
}

TEST_F(CodePageMethods, EncodesByteStringsInThreeForms) {
    const struct {
        std::int32_t codePage;
        std::u16string_view in;
        VARIANT_BOOL raw, widened;
        Bstr out;
    } cases[] = {
        {1252, u"\u00E9", 0, -1, Bstr(u"\u00E9")},
        {1252, u"\u00E9", -1, 0, Bytes("\xE9")},
        {1251, u"\u0410", 0, 0, Bstr(u"\u00C0")},
        {1251, u"\u0402", 0, 0, Bstr(u"\u20AC")},
        {932, u"\u30C6a", 0, -1, Bstr(u"\u0083ea")},
        {932, u"\u30C6a", -1, 1, Bytes("\x83\x65\x61")},
        {1252, u"\u0410\u200B\U00010000\xD800", -1, 0, Bytes("?????")},
        {65001, u"\u20AC\xD800", -1, 0, Bytes("\xE2\x82\xAC\xEF\xBF\xBD")},
        {50000, std::u16string_view(u"x\0y", 3), -1, -1, Bstr(u"x")},
    };
    for (const auto& test : cases) {
        Bstr out;
        EXPECT_EQ(utils->ConvertStringFromUnicode(test.codePage, Bstr(test.in).Get(), test.raw,
                                                  test.widened, out.Out()),
                  S_OK);
        EXPECT_EQ(MemoryOf(out), MemoryOf(test.out)) << test.codePage;
    }
}

TEST_F(CodePageMethods, ConversionsWithoutAnAnswerLeaveTheResultAlone) {
    const Bstr text(u"abc");
    BSTR const before = text.Get();
    for (const std::int32_t codePage : {1, 10001, 99999, -1, -2147483647 - 1}) {
        for (int call = 0; call < 2; ++call) {
            BSTR out = before;
            EXPECT_EQ(utils->ConvertStringToUnicode(codePage, text.Get(), 0, 0, &out), S_FALSE);
            EXPECT_EQ(utils->ConvertStringFromUnicode(codePage, text.Get(), 0, 0, &out), S_FALSE);
            EXPECT_EQ(out, before) << codePage;
        }
    }
    for (const auto& [raw, widened] : {std::pair<VARIANT_BOOL, VARIANT_BOOL>{-1, 0}, {0, -1}, {}}) {
        BSTR out = before;
        EXPECT_EQ(utils->ConvertStringToUnicode(1252, nullptr, raw, widened, &out), S_FALSE);
        EXPECT_EQ(utils->ConvertStringFromUnicode(1252, nullptr, raw, widened, &out), S_FALSE);
        EXPECT_EQ(out, before);
    }
    EXPECT_EQ(utils->ConvertStringToUnicode(1252, text.Get(), 0, 0, nullptr), E_POINTER);
    EXPECT_EQ(utils->ConvertStringFromUnicode(1200, text.Get(), 0, 0, nullptr), E_POINTER);
}

TEST_F(CodePageMethods, TellsTheCodePagesOfAText) {
    const struct {
        std::u16string_view text;
        std::vector<std::uint32_t> codePages;
    } cases[] = {
        {u"", {}},
        {u"caf\u00E9", {1252, 1250, 1254, 1256, 1257, 1258, 936}},
        {u"\u05D0", {1255}},
        {u"\uAC02", {949, 1361}},
        {u"\u0410\u05D0", {}},
        {u"a\u200B", {}},
        {u"\xD800", {}},
    };
    for (const auto& test : cases) {
        SAFEARRAY* found = nullptr;
        ASSERT_EQ(utils->GetStringCodePages(Bstr(test.text).Get(), &found), S_OK);
        VARTYPE type = 0;
        std::int32_t bound = 5;
        EXPECT_EQ(SafeArrayGetVartype(found, &type), S_OK);
        EXPECT_EQ(type, VT_UI4);
        EXPECT_EQ(SafeArrayGetLBound(found, 1, &bound), S_OK);
        EXPECT_EQ(bound, 0);
        EXPECT_EQ(SafeArrayGetUBound(found, 1, &bound), S_OK);
        const auto* const numbers = static_cast<const std::uint32_t*>(found->pvData);
        EXPECT_EQ(std::vector<std::uint32_t>(numbers, numbers + bound + 1), test.codePages);
        SafeArrayDestroy(found);
    }
    EXPECT_EQ(utils->GetStringCodePages(nullptr, nullptr), E_POINTER);
}

TEST_F(CodePageMethods, TellsWhetherAStringFits) {
    const struct {
        std::u16string_view text;
        std::int32_t codePage;
        bool fits;
    } cases[] = {
        {u"A", 1252, true},
        {u"\u05D0", 1252, false},
        {u"\u05D0", 1255, true},
        {u"\u05D0", 0, false},  // the ANSI code page
        {std::u16string_view(u"A\0\u05D0", 3), 1252, true},
        {u"\u0100", 1252, false},  // no best fit
        {u"a\u200Bb", 1252, false},
        {u"a\u200Bb", 932, false},
        {u"e\u0301", 1252, false},
        {u"\u3042", 50220, true},
        {u"\u05D0", 50220, false},
        {u"\xD800", 65001, false},
        {u"\xD800", 1200, true},
        {u"", 1252, true},
        {u"\u05D0", 99999, true},
        {u"\u05D0", -1, true},
    };
    for (const auto& test : cases) {
        VARIANT_BOOL fits = 5;
        EXPECT_EQ(utils->IsStringInCodePage(Bstr(test.text).Get(), test.codePage, &fits), S_OK);
        EXPECT_EQ(fits, test.fits ? VARIANT_TRUE : VARIANT_FALSE) << test.codePage;
    }
    EXPECT_EQ(utils->IsStringInCodePage(nullptr, 1252, nullptr), E_POINTER);
}

// The bytes are those of the text in code page 1252.
TEST_F(CodePageMethods, DetectsPageAndLanguageOfByteStrings) {
    constexpr std::int32_t Unwritten = -5;
    const struct {
        std::u16string_view text;
        std::int32_t defaultCodePage;
        HRESULT pageStatus;
        std::int32_t codePage;
        HRESULT languageStatus;
        std::int32_t langId;
    } cases[] = {
        {u"Íå óäàëîñü îòêðûòü ôàéë", 0, S_OK, 1251, S_OK, 1049},
        {u"OÃ¹ est la clÃ© que tu m'as donnÃ©e ?", 1250, S_OK, 65001, S_OK, 1036},
        {u"Die Größe überschreitet das Maß", 1251, S_OK, 1252, S_OK, 1031},
        {u"123", 1251, S_OK, 1251, S_FALSE, Unwritten},
        {u"123", -1, S_OK, -1, S_FALSE, Unwritten},
        {u"<b></b>", 1251, S_OK, 1252, S_FALSE, Unwritten},
        {u"", 1251, S_FALSE, Unwritten, S_FALSE, Unwritten},
    };
    for (const auto& test : cases) {
        const Bstr text(test.text);
        std::int32_t codePage = Unwritten;
        std::int32_t langId = Unwritten;
        EXPECT_EQ(utils->DetectCodePage(text.Get(), test.defaultCodePage, &codePage),
                  test.pageStatus);
        EXPECT_EQ(codePage, test.codePage);
        EXPECT_EQ(utils->DetectLanguage(text.Get(), &langId), test.languageStatus);
        EXPECT_EQ(langId, test.langId);
    }
    EXPECT_EQ(utils->DetectCodePage(nullptr, 0, nullptr), E_POINTER);
    EXPECT_EQ(utils->DetectLanguage(nullptr, nullptr), E_POINTER);
}

// Objects share the tables of the pages and nothing else.
TEST_F(CodePageMethods, ObjectsOnManyThreadsDoNotDisturbEachOther) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            ComPtr<IStringUtils> own;
            ASSERT_EQ(CoCreateInstance(CLSID_StringUtils, nullptr, CLSCTX_INPROC_SERVER,
                                       IID_IStringUtils, own.OutVoid()),
                      S_OK);
            for (int round = 0; round < 20; ++round) {
                Bstr out;
                for (const std::int32_t codePage : {932, 50220, 65001, 51932}) {
                    const Bstr text(u"\u30C6a\u65E5");
                    Bstr bytes;
                    ASSERT_EQ(
                        own->ConvertStringFromUnicode(codePage, text.Get(), -1, 0, bytes.Out()),
                        S_OK);
                    ASSERT_EQ(own->ConvertStringToUnicode(codePage, bytes.Get(), -1, 0, out.Out()),
                              S_OK);
                    EXPECT_EQ(out.View(), text.View());
                }
                SAFEARRAY* found = nullptr;
                EXPECT_EQ(own->GetStringCodePages(Bstr(u"a").Get(), &found), S_OK);
                EXPECT_EQ(found->rgsabound[0].cElements, 15u);
                SafeArrayDestroy(found);
                std::int32_t langId = 0;
                EXPECT_EQ(own->DetectLanguage(Bstr(u"Íå óäàëîñü îòêðûòü ôàéë").Get(), &langId),
                          S_OK);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace
}  // namespace generalutilities
