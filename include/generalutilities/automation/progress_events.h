#pragma once

#include <generalutilities/automation/pointers.h>
#include <generalutilities/interfaces/ext_view_helper.h>

#include <atomic>
#include <cstdint>
#include <exception>
#include <functional>
#include <utility>

/// The progress events of `ExtViewHelper` for C++ clients.
namespace generalutilities {

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
        if (failure != nullptr) {
            return E_FAIL;
        }
        try {
            report(arguments->rgvarg[1].lVal);
            return S_OK;
        } catch (...) {
            failure = std::current_exception();
            return E_FAIL;
        }
    }

    /// What the function threw, once; null when it threw nothing.
    std::exception_ptr TakeFailure() { return std::exchange(failure, nullptr); }

  private:
    ~ProgressSink() = default;

    std::function<void(int)> report;
    std::exception_ptr failure;
    std::atomic<std::uint32_t> references{1};
};

/// Connects a function to the events of an `ExtViewHelper` for as long as this object lives. The
/// function gets the percent values of exports and imports, 0 to 100, from inside the call that
/// works.
class ProgressConnection {
  public:
    ProgressConnection(const ComPtr<IExtViewHelper>& helper,
                       std::function<void(int percent)> percent)
        : sink(ComPtr<ProgressSink>::Take(new ProgressSink(std::move(percent)))) {
        const auto container = helper.As<IConnectionPointContainer>(IID_IConnectionPointContainer);
        if (container &&
            Succeeded(container->FindConnectionPoint(DIID__IExtViewHelperEvents, point.Out())) &&
            Failed(point->Advise(sink.Get(), &cookie))) {
            point = {};
        }
    }
    ~ProgressConnection() {
        if (point) {
            point->Unadvise(cookie);
        }
    }
    ProgressConnection(const ProgressConnection&) = delete;
    ProgressConnection& operator=(const ProgressConnection&) = delete;

    /// False for an object without these events, which works all the same.
    bool IsConnected() const { return static_cast<bool>(point); }

    /// An exception cannot leave the function through the library, which goes on with its work.
    /// What the function threw comes out of here, to be called behind the work; the function is not
    /// called again in between.
    void RethrowFailure() {
        if (const std::exception_ptr failure = sink->TakeFailure()) {
            std::rethrow_exception(failure);
        }
    }

  private:
    ComPtr<ProgressSink> sink;
    ComPtr<IConnectionPoint> point;
    std::uint32_t cookie = 0;
};

}  // namespace generalutilities
