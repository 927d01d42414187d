// Eight threads with objects of their own give the answers that one thread gives. Under the thread
// sanitizer this is also the proof that they share nothing without a lock.

#include <generalutilities/automation/pointers.h>
#include <generalutilities/extview/export_options.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/ext_view_helper.h>
#include <generalutilities/interfaces/string_utils.h>

#include "collection_lives.h"
#include "described_call.h"
#include "drawing_life.h"
#include "frame/values.h"
#include "project.h"
#include "rounds.h"

#include <thread>
#include <vector>

namespace generalutilities::fire {
namespace {

/// What an object answered, in the order of the questions.
struct Answers {
    std::u16string all;

    void Add(HRESULT status) {
        const std::string number = std::to_string(status);
        all.append(number.begin(), number.end()).append(u"\n");
    }
    /// By reference: the text is looked at when the call that gives it has been made.
    void Add(HRESULT status, const Bstr& text) {
        all.append(text.View());
        Add(status);
    }
    void Add(std::string_view bytes) { all.append(bytes.begin(), bytes.end()); }
};

void AskStringUtils(Answers& answers) {
    const auto utils = Create<IStringUtils>(CLSID_StringUtils, IID_IStringUtils);
    for (const char16_t* words : {u"\u00C9l\u00E8ve {12} stra\u00DFe", u"R&D 3.5 %\uFDFA",
                                  u"\u4E2D\u6587 text", u"\u0623\u062D\u0645\u062F, 1 234"}) {
        const Bstr text(words);
        for (const Method& method : DescribeStringUtils().methods) {
            for (const std::int32_t number : {1, 4, 1036, 1041, 1055, 1252}) {
                if (method.name != std::u16string_view(u"GenerateString")) {  // draws lots
                    answers.Add(
                        CallDescribed(method, utils.Get(), text.Get(), number, &answers.all));
                }
            }
        }
    }
    // Late binding, and the type information behind it, which all objects share.
    char16_t name[] = u"ToUpper";
    char16_t* names[] = {name};
    DISPID member = 0;
    answers.Add(utils->GetIDsOfNames(GUID_NULL, names, 1, 0, &member));
    const Bstr text(u"late");
    Answer late = generalutilities::Call(utils.Get(), member, DISPATCH_METHOD, {Borrowed(text)});
    answers.Add(late.status, Bstr(TakeText(late.result)));
    ComPtr<ITypeInfo> information;
    answers.Add(utils->GetTypeInfo(0, 0, information.Out()));

    const std::int32_t handle = HandleFromPointer(&answers);
    answers.Add(PointerFromHandle(handle) == &answers ? S_OK : E_FAIL);
    ReleaseHandle(handle);
}

void AskCollections(Answers& answers) {
    const Bstr text(u"an item");
    const std::int32_t compare = HandleFromPointer(reinterpret_cast<void*>(&CompareLongs));
    answers.Add(LiveWithCollections(text.Get(), compare, &answers.all));
    ReleaseHandle(compare);
}

void AskExtViewHelper(Answers& answers, const Project& project, const std::u16string& file) {
    const auto helper = Create<IExtViewHelper>(CLSID_ExtViewHelper, IID_IExtViewHelper);
    ComPtr<IUnknown> opened;
    ASSERT_EQ(OpenProjectDatabase(project.Path().c_str(), opened.Out()), S_OK);
    const Bstr path(file), reviewed(project.Reviewed()), nowhere(u"/nowhere/at/all");
    for (const std::int32_t options :
         {std::int32_t{ShowIdColumn}, std::int32_t{ShowIdColumn | UniquePairsOnly},
          std::int32_t{FormatTwb}, std::int32_t{FormatHtml}}) {
        answers.Add(helper->ExportExternalView(opened.Get(), path.Get(), 0, 1036, options, nullptr,
                                               1, 2, 3, 4, 5, 6, 7, 8, 9));
        answers.Add(ReadFile(file));
        for (const Bstr* from : {&path, &reviewed}) {
            answers.Add(helper->ImportExternalView(opened.Get(), from->Get(), 1036, options,
                                                   VARIANT_FALSE));
            answers.Add(project.Look().reimporting);
        }
    }
    // A failure leaves its words for the thread alone in which it happened.
    answers.Add(helper->ImportExternalView(opened.Get(), nowhere.Get(), 1036, 0, VARIANT_FALSE));
    answers.Add(S_OK, Bstr(Report()));
}

TEST(Threads, EightGiveTheAnswersOfOne) {
    constexpr std::size_t Count = 8;
    InstallFaultyVfs();
    const TemporaryFolder folder;
    const int rounds = LongRounds() ? 100 : 3;
    const auto ask = [&](Answers& answers, const Project& project, std::size_t number) {
        const std::u16string name = {static_cast<char16_t>(u'0' + number)};
        for (int round = 0; round < rounds; ++round) {
            AskStringUtils(answers);
            AskCollections(answers);
            answers.Add(LiveWithDrawing(Bstr(u"a text \u05D0 \u4E2D\u0301").Get(), &answers.all));
            AskExtViewHelper(answers, project, folder.Path(name));
        }
    };
    std::vector<std::unique_ptr<Project>> projects;
    for (std::size_t i = 0; i <= Count; ++i) {
        projects.push_back(std::make_unique<Project>(20, 50));
    }
    std::vector<Answers> answers(Count + 1);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < Count; ++i) {
        threads.emplace_back([&, i] { ask(answers[i], *projects[i], i); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    ask(answers[Count], *projects[Count], Count);
    EXPECT_GT(answers[Count].all.size(), 1000u);
    for (std::size_t i = 0; i < Count; ++i) {
        EXPECT_TRUE(answers[i].all == answers[Count].all) << "thread " << i;
    }
}

}  // namespace
}  // namespace generalutilities::fire
