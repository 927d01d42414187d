#include "event_connection.h"

#include "component_client.h"

#include <atomic>
#include <utility>

namespace generalutilities::cli {
namespace {

/// The sink: an object that answers to `Invoke` alone, as an event interface asks of its client.
class ProgressSink final : public IDispatch {
  public:
    explicit ProgressSink(std::function<void(int)> percent) : report(std::move(percent)) {}

    HRESULT QueryInterface(REFIID iid, void** object) noexcept override {
        if (object == nullptr) {
            return E_POINTER;
        }
        *object = nullptr;
        if (iid != IID_IUnknown && iid != IID_IDispatch && iid != DIID__IExtViewHelperEvents) {
            return E_NOINTERFACE;
        }
        AddRef();
        *object = static_cast<IDispatch*>(this);
        return S_OK;
    }
    std::uint32_t AddRef() noexcept override { return ++references; }
    std::uint32_t Release() noexcept override {
        const std::uint32_t left = --references;
        if (left == 0) {
            delete this;
        }
        return left;
    }

    HRESULT GetTypeInfoCount(std::uint32_t* count) noexcept override {
        *count = 0;
        return S_OK;
    }
    HRESULT GetTypeInfo(std::uint32_t, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
    HRESULT GetIDsOfNames(REFIID, char16_t**, std::uint32_t, LCID, DISPID*) noexcept override {
        return E_NOTIMPL;
    }
    HRESULT Invoke(DISPID member, REFIID, LCID, std::uint16_t, DISPPARAMS* arguments, VARIANT*,
                   EXCEPINFO*, std::uint32_t*) noexcept override {
        if (member != DISPID_ExportProgress && member != DISPID_ImportProgress) {
            return DISP_E_MEMBERNOTFOUND;
        }
        // The last argument stands first: the language, then the percent value.
        if (arguments == nullptr || arguments->cArgs != 2 || arguments->rgvarg[1].vt != VT_I4) {
            return DISP_E_BADPARAMCOUNT;
        }
        report(arguments->rgvarg[1].lVal);
        return S_OK;
    }

  private:
    ~ProgressSink() = default;

    std::function<void(int)> report;
    std::atomic<std::uint32_t> references{1};
};

}  // namespace

EventConnection::EventConnection(const ComPtr<IExtViewHelper>& helper,
                                 std::function<void(int percent)> percent) {
    const auto container = helper.As<IConnectionPointContainer>(IID_IConnectionPointContainer);
    if (!container ||
        Failed(container->FindConnectionPoint(DIID__IExtViewHelperEvents, point.Out()))) {
        return;  // an object without events works all the same
    }
    const auto sink = ComPtr<IDispatch>::Take(new ProgressSink(std::move(percent)));
    if (Failed(point->Advise(sink.Get(), &cookie))) {
        point = {};
    }
}

EventConnection::~EventConnection() {
    if (point) {
        point->Unadvise(cookie);
    }
}

}  // namespace generalutilities::cli
