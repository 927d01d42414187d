#pragma once

#include <memory>
#include <unicode/ucnv.h>

namespace generalutilities::code_pages {

struct IcuCloser {
    void operator()(UConverter* opened) const { ucnv_close(opened); }
};
using IcuHandle = std::unique_ptr<UConverter, IcuCloser>;

/// A converter of ICU; null where there is none of this name.
inline IcuHandle OpenIcu(const char* name) {
    UErrorCode error = U_ZERO_ERROR;
    IcuHandle converter(ucnv_open(name, &error));
    return U_SUCCESS(error) ? std::move(converter) : nullptr;
}

}  // namespace generalutilities::code_pages
