#include "tagged/target_dictionary.h"

#include <generalutilities/error.h>

#include <limits>
#include <new>

namespace generalutilities {

namespace {

/// Whether a value is an array of variants as the array functions make it, of one dimension, whose
/// last index is a `long`.
bool IsListOfVariants(const VARIANT& value) {
    if (value.vt != (VT_ARRAY | VT_VARIANT) || value.parray == nullptr) {
        return false;
    }
    SAFEARRAY& array = *value.parray;
    const SAFEARRAYBOUND& bound = array.rgsabound[0];
    VARTYPE type = VT_EMPTY;
    return array.cDims == 1 && array.cbElements == sizeof(VARIANT) &&
           Succeeded(SafeArrayGetVartype(&array, &type)) && type == VT_VARIANT &&
           (bound.cElements == 0 || array.pvData != nullptr) &&
           std::int64_t{bound.lLbound} + bound.cElements - 1 <=
               std::numeric_limits<std::int32_t>::max();
}

}  // namespace

TargetDictionary::TargetDictionary(IUnknown* object) {
    if (object != nullptr) {
        object->QueryInterface(IID_IDictionary, dictionary.OutVoid());
    }
    if (!dictionary) {
        throw Error(E_FAIL, "No dictionary passed");
    }
    if (Failed(dictionary->Keys(keys.Out())) || !IsListOfVariants(keys.Get())) {
        throw Error(E_FAIL, "Dictionary object has changed, it's unusable");
    }
}

/// A borrowed copy, so that the dictionary cannot change the list of keys through it.
VARIANT TargetDictionary::Key(std::size_t index) const {
    return static_cast<const VARIANT*>(keys.Get().parray->pvData)[index];
}

Bstr TargetDictionary::Read(std::size_t index) const {
    VARIANT key = Key(index);
    Variant given, item;
    if (Failed(dictionary->get_Item(&key, given.Out()))) {
        throw Error(E_FAIL, "The dictionary gives no item for one of its keys");
    }
    if (VariantCopyInd(item.InOut(), &given.Get()) == E_OUTOFMEMORY) {
        throw std::bad_alloc();
    }
    if (item.Get().vt != VT_BSTR) {
        throw Error(E_FAIL, "An item of the dictionary is not a string");
    }
    Bstr text;
    *text.Out() = item.Release().bstrVal;
    return text;
}

void TargetDictionary::Write(std::size_t index, const Bstr& text) const {
    VARIANT key = Key(index);
    VARIANT item{};
    item.vt = VT_BSTR;
    item.bstrVal = text.Get();
    if (Failed(dictionary->put_Item(&key, &item))) {
        throw Error(E_FAIL, "The dictionary does not take an item for one of its keys");
    }
}

}  // namespace generalutilities
