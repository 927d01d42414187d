#pragma once

#include <generalutilities/automation/unknown.h>

/// The component through which export files are written. A host that wants to watch or redirect the
/// writing registers a class factory of its own for `CLSID_TextFileFactory`.
namespace generalutilities {

/// An open text file. Export files are written by `Write` and `Close` alone.
struct ITextFileStream : IDispatch {
    virtual HRESULT get_Line(std::int32_t* line) noexcept = 0;
    virtual HRESULT get_Column(std::int32_t* column) noexcept = 0;
    virtual HRESULT get_AtEndOfStream(VARIANT_BOOL* end) noexcept = 0;
    virtual HRESULT get_AtEndOfLine(VARIANT_BOOL* end) noexcept = 0;
    virtual HRESULT Read(std::int32_t characters, BSTR* text) noexcept = 0;
    virtual HRESULT ReadLine(BSTR* text) noexcept = 0;
    virtual HRESULT ReadAll(BSTR* text) noexcept = 0;
    /// Writes a text; `written` (may be null) receives its length, or 0 on failure.
    virtual HRESULT Write(BSTR text, std::int32_t* written) noexcept = 0;
    virtual HRESULT WriteLine(BSTR text) noexcept = 0;
    virtual HRESULT WriteBlankLines(std::int32_t lines) noexcept = 0;
    virtual HRESULT Skip(std::int32_t characters) noexcept = 0;
    virtual HRESULT SkipLine() noexcept = 0;
    virtual HRESULT Close() noexcept = 0;
};

/// Opens text files.
struct ITextFileFactory : IDispatch {
    /// Opens `path`: `mode` 2 writes, `create` 1 makes the file; no other values are known.
    /// `format` is a value of `TextFileFormat`.
    virtual HRESULT OpenTextFile(BSTR path, std::int32_t mode, std::int32_t create,
                                 std::int32_t format, ITextFileStream** stream) noexcept = 0;
};
inline constexpr IID IID_ITextFileFactory = MakeGuid("{D69648D5-9F87-4C17-9A2C-FDC5F071D6FA}");
inline constexpr CLSID CLSID_TextFileFactory = MakeGuid("{E5011CBE-66F9-43DD-89B8-9D1BA1D6FB68}");

}  // namespace generalutilities
