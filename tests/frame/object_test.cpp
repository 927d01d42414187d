// Creation, aggregation, class factories and reports, on a small class of the test's own.

#include <generalutilities/automation/pointers.h>

#include "frame/class_factory.h"
#include "frame/dispatch.h"
#include "frame/error_reporting.h"
#include "frame/interface_descriptions.h"

#include <gtest/gtest.h>
#include <thread>

namespace generalutilities {
namespace {

int living = 0;
HRESULT startStatus = S_OK;

class Stack : public Dual<ILongStack, DescribeLongStack> {
  public:
    Stack() { ++living; }
    ~Stack() { --living; }
    void* FindInterface(REFIID iid) noexcept {
        ILongStack* const self = this;
        return FindInTable(iid,
                           {{IID_IUnknown, self}, {IID_IDispatch, self}, {IID_ILongStack, self}});
    }
    HRESULT Start() noexcept {
        // Handing a reference out and back during the start-up step must not end the object.
        AddRef();
        Release();
        return startStatus;
    }
    HRESULT Push(std::int32_t value) noexcept override {
        top = value;
        return S_OK;
    }
    HRESULT Pop(std::int32_t* value) noexcept override { return Peek(value); }
    HRESULT Peek(std::int32_t* value) noexcept override {
        *value = top;
        return S_OK;
    }
    HRESULT Contains(std::int32_t value, VARIANT_BOOL* found) noexcept override {
        *found = value == top ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    }

  private:
    std::int32_t top = 0;
};

/// An outer object that owns an inner one and hands its interfaces out as its own.
class Outer final : public IUnknown {
  public:
    HRESULT QueryInterface(REFIID iid, void** object) noexcept override {
        if (iid == IID_IUnknown) {
            *object = this;
            AddRef();
            return S_OK;
        }
        return inner->QueryInterface(iid, object);
    }
    std::uint32_t AddRef() noexcept override { return ++references; }
    std::uint32_t Release() noexcept override { return --references; }

    ComPtr<IUnknown> inner;
    std::uint32_t references = 1;
};

TEST(ObjectTest, LivesAsLongAsItIsHeldAndLocksTheModule) {
    ASSERT_FALSE(IsModuleLocked());
    ComPtr<ILongStack> stack;
    ASSERT_EQ(CreateStandalone<Stack>(nullptr, IID_ILongStack, stack.OutVoid()), S_OK);
    EXPECT_EQ(living, 1);
    EXPECT_TRUE(IsModuleLocked());
    const auto dispatch = stack.As<IDispatch>(IID_IDispatch);
    stack = {};
    EXPECT_EQ(living, 1);
    void* nothing = &living;
    EXPECT_EQ(dispatch->QueryInterface(IID_ISupportErrorInfo, &nothing), E_NOINTERFACE);
    EXPECT_EQ(nothing, nullptr);
    EXPECT_EQ(dispatch->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    const_cast<ComPtr<IDispatch>&>(dispatch) = {};
    EXPECT_EQ(living, 0);
    EXPECT_FALSE(IsModuleLocked());
}

TEST(ObjectTest, AFailedCreationLeavesNothing) {
    void* object = &living;
    startStatus = E_FAIL;
    EXPECT_EQ(CreateStandalone<Stack>(nullptr, IID_ILongStack, &object), E_FAIL);
    EXPECT_EQ(object, nullptr);
    startStatus = S_OK;
    EXPECT_EQ(CreateStandalone<Stack>(nullptr, IID_ILongSet, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(CreateStandalone<Stack>(nullptr, IID_ILongStack, nullptr), E_POINTER);
    EXPECT_EQ(living, 0);
    EXPECT_FALSE(IsModuleLocked());
}

TEST(ObjectTest, AggregationDelegatesToTheOuterObject) {
    Outer outer;
    void* object = &living;
    EXPECT_EQ(CreateStandalone<Stack>(&outer, IID_IUnknown, &object), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(CreateAggregable<Stack>(&outer, IID_ILongStack, &object), CLASS_E_NOAGGREGATION);
    ASSERT_EQ(CreateAggregable<Stack>(&outer, IID_IUnknown, outer.inner.OutVoid()), S_OK);
    EXPECT_EQ(outer.references, 1u) << "an inner object does not hold its outer one";

    ComPtr<ILongStack> stack;
    ASSERT_EQ(outer.QueryInterface(IID_ILongStack, stack.OutVoid()), S_OK);
    EXPECT_EQ(outer.references, 2u) << "a public interface counts on the outer object";
    ComPtr<IUnknown> identity;
    stack->QueryInterface(IID_IUnknown, identity.OutVoid());
    EXPECT_EQ(identity.Get(), &outer);
    identity = {};
    EXPECT_EQ(stack->Push(5), S_OK);
    stack = {};
    EXPECT_EQ(outer.references, 1u);
    EXPECT_EQ(living, 1);
    outer.inner = {};
    EXPECT_EQ(living, 0);
    EXPECT_FALSE(IsModuleLocked());
}

TEST(ClassFactoryTest, CountsTheCallersReferencesOnly) {
    auto* const factory = new ClassFactory(CreateStandalone<Stack>);  // as the class table holds it
    EXPECT_FALSE(IsModuleLocked());
    IClassFactory* held = nullptr;
    ASSERT_EQ(factory->QueryInterface(IID_IClassFactory, reinterpret_cast<void**>(&held)), S_OK);
    EXPECT_TRUE(IsModuleLocked());
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
    EXPECT_EQ(factory->CreateInstance(&outer, IID_ILongStack, &object), CLASS_E_NOAGGREGATION);
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
    std::thread([] {
        ComPtr<IErrorInfo> none;
        EXPECT_EQ(GetErrorInfo(0, none.Out()), S_FALSE);
    }).join();

    ComPtr<IErrorInfo> error;
    ASSERT_EQ(GetErrorInfo(0, error.Out()), S_OK);
    Bstr text, source;
    GUID guid{};
    error->GetDescription(text.Out());
    error->GetSource(source.Out());
    error->GetGUID(&guid);
    EXPECT_EQ(text.View(), u"caf\u00E9");
    EXPECT_EQ(source.Get(), nullptr);
    EXPECT_EQ(guid, IID_ILongStack);
    EXPECT_EQ(GetErrorInfo(0, error.Out()), S_FALSE) << "taken out once";
}

}  // namespace
}  // namespace generalutilities
