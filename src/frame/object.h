#pragma once

#include <generalutilities/automation/unknown.h>

#include "frame/module_lock.h"

#include <cstdint>
#include <exception>
#include <initializer_list>
#include <new>
#include <utility>

/// How a component class becomes an object.
///
/// A class derives from its interfaces and leaves the three operations of `IUnknown` open. It says
/// which interfaces it has in one table:
///
///     void* FindInterface(REFIID iid) noexcept {
///         return FindInTable(iid, {{IID_IUnknown, Default()}, {IID_IThing, Default()}, ...});
///     }
///     HRESULT Start() noexcept;   // the start-up step; a failure undoes the creation
///
/// Two templates close it: `StandaloneObject` counts its own references, `AggregatedObject` is an
/// inner object whose public interfaces delegate to an outer one. The creators below make either.
namespace generalutilities {

struct InterfaceRow {
    const IID& iid;
    void* pointer;
};

inline void* FindInTable(REFIID iid, std::initializer_list<InterfaceRow> rows) {
    for (const InterfaceRow& row : rows) {
        if (row.iid == iid) {
            return row.pointer;
        }
    }
    return nullptr;
}

/// Runs the body of a method; running out of memory and any other exception become a status here
/// and nowhere else.
template <class Body>
HRESULT Guarded(Body&& body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (const std::exception&) {
        return E_FAIL;
    }
}

/// An object with a reference count of its own. It starts with none: the creator's query adds the
/// first. The count takes no lock, as an object is called by one thread at a time.
template <class Class>
class StandaloneObject final : public Class {
  public:
    template <class... Arguments>
    explicit StandaloneObject(Arguments&&... arguments)
        : Class(std::forward<Arguments>(arguments)...) {
        LockModule();
    }
    ~StandaloneObject() { UnlockModule(); }

    HRESULT QueryInterface(REFIID iid, void** object) noexcept override {
        if (object == nullptr) {
            return E_POINTER;
        }
        *object = this->FindInterface(iid);
        if (*object == nullptr) {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    std::uint32_t AddRef() noexcept override { return ++references; }
    std::uint32_t Release() noexcept override {
        const std::uint32_t left = --references;
        if (left == 0) {
            references = 1;  // a release from inside the destructor must not delete again
            delete this;
        }
        return left;
    }

    /// The start-up step runs with a reference, so that it may hand the object out and take it
    /// back.
    HRESULT StartUp() noexcept {
        ++references;
        const HRESULT status = this->Start();
        --references;
        return status;
    }

  private:
    std::uint32_t references = 0;
};

/// An inner object: its own `IUnknown` counts the references, while every public interface of the
/// class passes the operations of `IUnknown` on to the outer object.
template <class Class>
class AggregatedObject final : public IUnknown {
  public:
    explicit AggregatedObject(IUnknown* outer) : inner(outer) { LockModule(); }
    ~AggregatedObject() { UnlockModule(); }

    HRESULT QueryInterface(REFIID iid, void** object) noexcept override {
        if (object == nullptr) {
            return E_POINTER;
        }
        if (iid == IID_IUnknown) {
            *object = static_cast<IUnknown*>(this);
            AddRef();
            return S_OK;
        }
        *object = inner.FindInterface(iid);
        if (*object == nullptr) {
            return E_NOINTERFACE;
        }
        inner.AddRef();
        return S_OK;
    }
    std::uint32_t AddRef() noexcept override { return ++references; }
    std::uint32_t Release() noexcept override {
        const std::uint32_t left = --references;
        if (left == 0) {
            references = 1;
            delete this;
        }
        return left;
    }

    HRESULT StartUp() noexcept {
        ++references;
        const HRESULT status = inner.Start();
        --references;
        return status;
    }

  private:
    class Inner final : public Class {
      public:
        explicit Inner(IUnknown* outerObject) : outer(outerObject) {}
        HRESULT QueryInterface(REFIID iid, void** object) noexcept override {
            return outer->QueryInterface(iid, object);
        }
        std::uint32_t AddRef() noexcept override { return outer->AddRef(); }
        std::uint32_t Release() noexcept override { return outer->Release(); }

      private:
        IUnknown* outer;  ///< not counted: the outer object owns the inner one
    };

    Inner inner;
    std::uint32_t references = 0;
};

/// Makes an object, or nothing at all. The signature of every creator in the class table.
using Creator = HRESULT (*)(IUnknown* outer, REFIID iid, void** object);

template <class Object, class... Arguments>
HRESULT CreateObject(REFIID iid, void** object, Arguments... arguments) {
    return Guarded([&] {
        auto* const created = new Object(arguments...);
        HRESULT status = created->StartUp();
        if (Succeeded(status)) {
            status = created->QueryInterface(iid, object);
        }
        if (Failed(status)) {
            delete created;
        }
        return status;
    });
}

/// The creator of a class that refuses aggregation.
template <class Class>
HRESULT CreateStandalone(IUnknown* outer, REFIID iid, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    return outer != nullptr ? CLASS_E_NOAGGREGATION
                            : CreateObject<StandaloneObject<Class>>(iid, object);
}

/// The creator of a class that supports aggregation.
template <class Class>
HRESULT CreateAggregable(IUnknown* outer, REFIID iid, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    if (outer == nullptr) {
        return CreateObject<StandaloneObject<Class>>(iid, object);
    }
    return iid == IID_IUnknown ? CreateObject<AggregatedObject<Class>>(iid, object, outer)
                               : CLASS_E_NOAGGREGATION;
}

}  // namespace generalutilities
