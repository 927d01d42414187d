#pragma once

#include <generalutilities/automation/functions.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>

/// Owners for references and values, so that a client needs no raw pointer of its own.
namespace generalutilities {

/// Owns one reference to a component.
template <class Interface>
class ComPtr {
  public:
    ComPtr() = default;
    ComPtr(const ComPtr& other) : pointer(other.pointer) {
        if (pointer != nullptr) {
            pointer->AddRef();
        }
    }
    ComPtr(ComPtr&& other) noexcept : pointer(std::exchange(other.pointer, nullptr)) {}
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(pointer, other.pointer);
        return *this;
    }
    ~ComPtr() {
        if (pointer != nullptr) {
            pointer->Release();
        }
    }

    /// Takes over a reference that the caller owns.
    static ComPtr Take(Interface* owned) {
        ComPtr result;
        result.pointer = owned;
        return result;
    }
    /// Adds a reference of its own.
    static ComPtr Share(Interface* borrowed) {
        if (borrowed != nullptr) {
            borrowed->AddRef();
        }
        return Take(borrowed);
    }

    Interface* Get() const { return pointer; }
    Interface* operator->() const { return pointer; }
    explicit operator bool() const { return pointer != nullptr; }
    Interface* Release() { return std::exchange(pointer, nullptr); }

    /// Where an out-argument puts a new reference; what was held is released first.
    Interface** Out() {
        *this = ComPtr();
        return &pointer;
    }
    void** OutVoid() { return reinterpret_cast<void**>(Out()); }

    /// The same object under another interface; empty if the object has none.
    template <class Other>
    ComPtr<Other> As(REFIID iid) const {
        ComPtr<Other> other;
        if (pointer != nullptr) {
            pointer->QueryInterface(iid, other.OutVoid());
        }
        return other;
    }

  private:
    Interface* pointer = nullptr;
};

/// Owns one BSTR. Empty text is held as an allocated empty string, unlike a null one.
class Bstr {
  public:
    Bstr() = default;
    explicit Bstr(std::u16string_view text)
        : string(SysAllocStringLen(text.data(), static_cast<std::uint32_t>(text.size()))) {}
    Bstr(Bstr&& other) noexcept : string(std::exchange(other.string, nullptr)) {}
    Bstr& operator=(Bstr other) noexcept {
        std::swap(string, other.string);
        return *this;
    }
    Bstr(const Bstr& other) : Bstr(other.View()) {}
    ~Bstr() { SysFreeString(string); }

    BSTR Get() const { return string; }
    BSTR* Out() {
        SysFreeString(std::exchange(string, nullptr));
        return &string;
    }
    /// The place itself, for an [in,out] argument.
    BSTR* InOut() { return &string; }
    BSTR Release() { return std::exchange(string, nullptr); }
    std::u16string_view View() const {
        return string == nullptr ? std::u16string_view()
                                 : std::u16string_view(string, SysStringLen(string));
    }
    std::u16string Text() const { return std::u16string(View()); }

  private:
    BSTR string = nullptr;
};

/// Owns one VARIANT.
class Variant {
  public:
    Variant() = default;
    Variant(Variant&& other) noexcept : value(std::exchange(other.value, VARIANT{})) {}
    Variant& operator=(Variant other) noexcept {
        std::swap(value, other.value);
        return *this;
    }
    ~Variant() { VariantClear(&value); }

    const VARIANT& Get() const { return value; }
    /// Where an out-argument puts a value; what was held is cleared first.
    VARIANT* Out() {
        VariantClear(&value);
        return &value;
    }
    /// The place itself, for an [in,out] argument.
    VARIANT* InOut() { return &value; }
    VARIANT Release() { return std::exchange(value, VARIANT{}); }

  private:
    VARIANT value{};
};

/// Ends an array for its owner.
struct ArrayDestroyer {
    void operator()(SAFEARRAY* array) const { SafeArrayDestroy(array); }
};
/// Owns one array.
using ArrayPtr = std::unique_ptr<SAFEARRAY, ArrayDestroyer>;

}  // namespace generalutilities
