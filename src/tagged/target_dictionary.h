#pragma once

#include <generalutilities/automation/dictionary.h>
#include <generalutilities/automation/pointers.h>

#include <cstddef>

namespace generalutilities {

/// The dictionary of targets that a caller hands over, which is anybody's object: nothing that it
/// gives is trusted. Operations throw `Error` with E_FAIL and words for the caller.
class TargetDictionary {
  public:
    /// `object` may be null, which is a failure like that of an object of another kind.
    explicit TargetDictionary(IUnknown* object);

    std::size_t Count() const { return keys.Get().parray->rgsabound[0].cElements; }
    /// The text under the key with this index, in the order of the keys.
    Bstr Read(std::size_t index) const;
    void Write(std::size_t index, const Bstr& text) const;

  private:
    VARIANT Key(std::size_t index) const;

    ComPtr<IDictionary> dictionary;
    Variant keys;
};

}  // namespace generalutilities
