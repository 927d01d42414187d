// The helpers for C++ clients: conversions on the way in and out, and misuse that ends in words.

#include <generalutilities/automation/client.h>
#include <generalutilities/automation/progress_events.h>

#include "values.h"

#include <functional>
#include <stdexcept>

namespace generalutilities {
namespace {

using namespace std::string_literals;

TEST(ClientTest, CallsTakeAndGiveTheTypesOfTheLanguage) {
    const auto utils = Create<IStringUtils>(CLSID_StringUtils);
    const std::u16string text = u"\xD800\0x"s;  // nothing is lost on the way
    EXPECT_EQ(Call(utils, &IStringUtils::ToLower, text), text);
    EXPECT_EQ(Call(utils, &IStringUtils::EditDistance, u"abc", Bstr(u"Abd").Get(), 0.5), 1.5);
    const ArrayPtr pages = Call(utils, &IStringUtils::GetStringCodePages, u"a");
    EXPECT_EQ(SafeArrayGetDim(pages.get()), 1u);
    Call(utils, &IStringUtils::put_TTXIgnoreFonts, true);  // exactly VARIANT_TRUE counts
    EXPECT_TRUE(Call(utils, &IStringUtils::get_TTXIgnoreFonts));

    const auto set = Create<ILongSet>(CLSID_LongSet);
    Call(set, &ILongSet::Add, 7);
    const ComPtr<ILongSet> both = Call(set, &ILongSet::IntersectWith, set);
    EXPECT_EQ(Call(both, &ILongSet::get_Item, 1), 7);

    Variant key, item;
    *key.Out() = Long(5);
    const auto dictionary = Create<IQLNDictionary>(CLSID_qlnDictionary);
    Call(dictionary, &IQLNDictionary::put_Item, key.InOut(), key.InOut());
    item = Call(dictionary, &IQLNDictionary::get_Item, key.InOut());
    EXPECT_EQ(item.Get().lVal, 5);
}

TEST(ClientTest, FailuresHaveStatusWordsAndSource) {
    const auto utils = Create<IStringUtils>(CLSID_StringUtils);
    const struct {
        std::function<void()> call;
        HRESULT status;
        const char* words;
        const char* source;
    } cases[] = {
        {[&] { Call(ComPtr<IStringUtils>(), &IStringUtils::ToUpper, u"x"); }, E_POINTER,
         "no object", "client"},
        {[&] { Call(utils, &IStringUtils::ConvertStringToUnicode, 99999, u"a", false, false); },
         S_FALSE, "no answer", "GeneralUtilities"},
        {[&] { Call(utils, &IStringUtils::ToIndex, u"a", 1033, 0); }, E_INVALIDARG, "refused",
         "GeneralUtilities"},
        {[&] { Query<ILongSet>(utils); }, E_NOINTERFACE, "interface", "GeneralUtilities"},
        {[&] { Create<ILongSet>(CLSID_StringUtils); }, E_NOINTERFACE, "interface",
         "GeneralUtilities"},
        {[&] { OpenProject("/nowhere/é"); }, E_FAIL, "/nowhere/é", "SQLite"},
    };
    for (const auto& test : cases) {
        try {
            test.call();
            ADD_FAILURE() << test.words;
        } catch (const ComponentError& error) {
            EXPECT_EQ(error.Status(), test.status) << error.what();
            EXPECT_NE(std::string(error.what()).find(test.words), std::string::npos)
                << error.what();
            EXPECT_EQ(error.Source(), test.source);
        }
    }
}

TEST(ClientTest, AnExceptionInAnEventFunctionComesOutBehindTheCall) {
    int calls = 0;
    const auto sink = ComPtr<ProgressSink>::Take(new ProgressSink([&](int) {
        ++calls;
        throw std::runtime_error("full");
    }));
    VARIANT arguments[] = {Long(1036), Long(50)};
    DISPPARAMS parameters{arguments, nullptr, 2, 0};
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(sink->Invoke(DISPID_ExportProgress, GUID_NULL, 0, DISPATCH_METHOD, &parameters,
                               nullptr, nullptr, nullptr),
                  E_FAIL);
    }
    EXPECT_EQ(calls, 1);
    EXPECT_THROW(std::rethrow_exception(sink->TakeFailure()), std::runtime_error);
    EXPECT_EQ(sink->TakeFailure(), nullptr);

    const auto helper = Create<IExtViewHelper>(CLSID_ExtViewHelper);
    EXPECT_TRUE(ProgressConnection(helper, [](int) {}).IsConnected());
    EXPECT_FALSE(ProgressConnection({}, [](int) {}).IsConnected());
}

}  // namespace
}  // namespace generalutilities
