// Creation, aggregation, class factories and reports, on a small class of the test's own.

#include "frame/class_factory.h"
#include "frame/dispatch.h"
#include "frame/error_reporting.h"
#include "frame/interface_descriptions.h"
#include "values.h"

#include <thread>

namespace generalutilities {
namespace {

int living = 0;
HRESULT startStatus = S_OK;

struct Thing : RichErrors<IID_ILongSet> {
    Thing() { ++living; }
    ~Thing() { --living; }
    void* FindInterface(REFIID iid) noexcept {
        ISupportErrorInfo* const self = this;
        return FindInTable(iid, {{IID_IUnknown, self}, {IID_ISupportErrorInfo, self}});
    }
    HRESULT Start() noexcept {
        // Handing a reference out and back during the start-up step must not end the object.
        AddRef();
        Release();
        return startStatus;
    }
};

/// An outer object that owns an inner one and hands its interfaces out as its own.
struct Outer final : Local<IUnknown> {
    HRESULT QueryInterface(REFIID iid, void** object) noexcept override {
        return iid == IID_IUnknown ? Local::QueryInterface(iid, object)
                                   : inner->QueryInterface(iid, object);
    }
    ComPtr<IUnknown> inner;
};

void ExpectNothingLives() {
    EXPECT_EQ(living, 0);
    EXPECT_FALSE(IsModuleLocked());
}

TEST(ObjectTest, LivesAsLongAsItIsHeldAndLocksTheModule) {
    ExpectNothingLives();
    ComPtr<ISupportErrorInfo> thing;
    ASSERT_EQ(CreateStandalone<Thing>(nullptr, IID_ISupportErrorInfo, thing.OutVoid()), S_OK);
    EXPECT_TRUE(IsModuleLocked());
    auto unknown = thing.As<IUnknown>(IID_IUnknown);
    thing = {};
    EXPECT_EQ(living, 1);
    void* nothing = &living;
    EXPECT_EQ(unknown->QueryInterface(IID_IDispatch, &nothing), E_NOINTERFACE);
    EXPECT_EQ(nothing, nullptr);
    EXPECT_EQ(unknown->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    unknown = {};
    ExpectNothingLives();
}

TEST(ObjectTest, AFailedCreationLeavesNothing) {
    for (const auto& [start, iid, status] :
         {std::tuple{HRESULT{E_FAIL}, IID_ISupportErrorInfo, HRESULT{E_FAIL}},
          {S_OK, IID_ILongSet, E_NOINTERFACE}}) {
        startStatus = start;
        void* object = &living;
        EXPECT_EQ(CreateStandalone<Thing>(nullptr, iid, &object), status);
        EXPECT_EQ(object, nullptr);
    }
    EXPECT_EQ(CreateStandalone<Thing>(nullptr, IID_ISupportErrorInfo, nullptr), E_POINTER);
    ExpectNothingLives();
}

TEST(ObjectTest, AggregationDelegatesToTheOuterObject) {
    Outer outer;
    void* object = &living;
    EXPECT_EQ(CreateStandalone<Thing>(&outer, IID_IUnknown, &object), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(CreateAggregable<Thing>(&outer, IID_ISupportErrorInfo, &object),
              CLASS_E_NOAGGREGATION);
    ASSERT_EQ(CreateAggregable<Thing>(&outer, IID_IUnknown, outer.inner.OutVoid()), S_OK);
    EXPECT_EQ(outer.references, 0u) << "an inner object does not hold its outer one";

    ComPtr<ISupportErrorInfo> thing;
    ASSERT_EQ(outer.QueryInterface(IID_ISupportErrorInfo, thing.OutVoid()), S_OK);
    EXPECT_EQ(outer.references, 1u) << "a public interface counts on the outer object";
    EXPECT_EQ(thing.As<IUnknown>(IID_IUnknown).Get(), &outer);
    thing = {};
    EXPECT_EQ(outer.references, 0u);
    EXPECT_EQ(living, 1);
    outer.inner = {};
    ExpectNothingLives();
}

TEST(ClassFactoryTest, CountsTheCallersReferencesOnly) {
    auto* const factory = new ClassFactory(CreateStandalone<Thing>);  // as the class table holds it
    EXPECT_FALSE(IsModuleLocked());
    IClassFactory* held = nullptr;
    ASSERT_EQ(factory->QueryInterface(IID_IClassFactory, reinterpret_cast<void**>(&held)), S_OK);
    held->AddRef();
    held->Release();
    EXPECT_TRUE(IsModuleLocked());
    held->LockServer(1);
    held->Release();
    EXPECT_TRUE(IsModuleLocked());
    factory->LockServer(0);
    EXPECT_FALSE(IsModuleLocked());

    Outer outer;
    void* object = &living;
    EXPECT_EQ(factory->CreateInstance(&outer, IID_ISupportErrorInfo, &object),
              CLASS_E_NOAGGREGATION);
    EXPECT_EQ(object, nullptr);
    factory->Release();
}

TEST(ErrorReportingTest, LeavesTextSourceAndInterfaceOnItsThread) {
    static constexpr CLSID Unregistered = MakeGuid("{00000000-1111-2222-3333-444444444444}");
    EXPECT_EQ(ReportError(Unregistered, u"first", IID_ILongSet, E_FAIL), E_FAIL);
    EXPECT_EQ(ReportError(Unregistered, "caf\xE9", IID_ILongStack, S_OK), DISP_E_EXCEPTION)
        << "a report never turns a failure into success";
    EXPECT_EQ(ReportError(Unregistered, static_cast<const char*>(nullptr), IID_ILongSet, E_FAIL),
              E_POINTER);
    std::thread([] { EXPECT_EQ(Report(), u"nothing"); }).join();
    IID interface {};
    EXPECT_EQ(Report(&interface), u": caf\u00E9");
    EXPECT_EQ(interface, IID_ILongStack);
    EXPECT_EQ(Report(), u"nothing") << "taken out once";
}

}  // namespace
}  // namespace generalutilities
