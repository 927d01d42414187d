#pragma once

#include <generalutilities/automation/pointers.h>
#include <generalutilities/itd/envelope.h>
#include <generalutilities/itd/reference_copy.h>

#include <string_view>

/// The way from a file to the bytes of its text part and back, through the archive manager that the
/// component runtime gives: the built-in one, or a host's own.
namespace generalutilities {

/// Who reports a failure of these functions: they call `ReportError` themselves. The status of a
/// failing archive manager goes to the caller without a report.
struct ItdReporter {
    REFCLSID clsid;
    REFIID iid;

    /// Reports a failure, and gives its status back.
    HRESULT Report(HRESULT status, const char16_t* words) const;
    /// One of the `ITDErrorCode`s, with its words.
    HRESULT Report(HRESULT status) const;
};

/// The unpacked bytes of a text part, and the envelope that it was in.
struct LoadedTextPart {
    ItdArchiveHeader archive;
    Bstr buffer;
    std::uint32_t length = 0;

    std::string_view Bytes() const { return {reinterpret_cast<const char*>(buffer.Get()), length}; }
};

/// Reads the envelope and has the text part unpacked. Throws `std::bad_alloc`.
HRESULT LoadTextPart(std::u16string_view path, const ItdReporter& reporter, LoadedTextPart& part);

/// Puts a text part in the place of the one that a copy of the reference has, in place. Another
/// file, and the reference itself, is not touched. Throws `std::bad_alloc`.
HRESULT ReplaceTextPart(std::u16string_view path, const ReferenceCopy& reference,
                        std::string_view bytes, const ItdReporter& reporter);

}  // namespace generalutilities
