#include "itd/text_part_access.h"

#include <generalutilities/automation/zip_manager.h>
#include <generalutilities/itd/archive.h>

#include "frame/error_reporting.h"

#include <limits>
#include <new>

namespace generalutilities {

namespace {

/// A new archive manager, which ends with the use that it was made for; null where there is none.
ComPtr<IZipManager> CreateZipManager() {
    ComPtr<IZipManager> manager;
    CoCreateInstance(CLSID_ZipManager, nullptr, CLSCTX_ALL, IID_IZipManager, manager.OutVoid());
    return manager;
}

Bstr FileName(std::u16string_view path) {
    Bstr name(path);
    if (name.Get() == nullptr) {
        throw std::bad_alloc();
    }
    return name;
}

}  // namespace

HRESULT ItdReporter::Report(HRESULT status, const char16_t* words) const {
    return ReportError(clsid, words, iid, status);
}

HRESULT ItdReporter::Report(HRESULT status) const {
    return Report(status, ItdErrorText(status));
}

HRESULT LoadTextPart(std::u16string_view path, const ItdReporter& reporter, LoadedTextPart& part) {
    part = LoadedTextPart();
    if (const HRESULT status = ReadArchiveHeader(path, part.archive); Failed(status)) {
        return reporter.Report(status);
    }
    const ComPtr<IZipManager> manager = CreateZipManager();
    if (!manager) {
        return reporter.Report(itderrUnableToAccessZip);
    }
    const HRESULT status =
        manager->ReadTextPart(FileName(path).Get(), part.archive.TextPartOffset(),
                              part.archive.compressedLength, &part.length, part.buffer.Out());
    if (part.buffer.Get() == nullptr) {
        part.length = 0;
    }
    return status;
}

HRESULT ReplaceTextPart(std::u16string_view path, const ReferenceCopy& reference,
                        std::string_view bytes, const ItdReporter& reporter) {
    const ComPtr<IZipManager> manager = CreateZipManager();
    if (!manager) {
        return reporter.Report(itderrUnableToAccessZip);
    }
    switch (reference.Compare(path)) {
        case ReferenceCopy::Answer::IsCopy:
            break;
        case ReferenceCopy::Answer::IsReference:
            return reporter.Report(E_INVALIDARG, u"The destination is the reference file itself");
        case ReferenceCopy::Answer::IsOther:
            return reporter.Report(E_INVALIDARG,
                                   u"The destination is no copy of the reference file");
        case ReferenceCopy::Answer::Unreadable:
            return reporter.Report(itderrUnableToOpenFile);
    }
    if (bytes.size() > std::numeric_limits<std::int32_t>::max()) {
        return E_OUTOFMEMORY;
    }
    const auto length = static_cast<std::uint32_t>(bytes.size());
    Bstr buffer;
    *buffer.Out() = SysAllocStringLen(nullptr, (length + 1) / sizeof(char16_t));
    if (buffer.Get() == nullptr) {
        return E_OUTOFMEMORY;
    }
    bytes.copy(reinterpret_cast<char*>(buffer.Get()), length);
    std::uint32_t trailerValue = 0;
    manager->ComputeTrailerValue(buffer.Get(), length, &trailerValue);
    std::uint32_t compressedLength = 0;
    const HRESULT status =
        manager->WriteTextPart(FileName(path).Get(), reference.LengthFieldOffset() + 4, length,
                               buffer.Get(), &compressedLength);
    if (Failed(status)) {
        return status;
    }
    const HRESULT closed =
        CloseTextPart(path, reference.LengthFieldOffset(), compressedLength, trailerValue);
    return closed == itderrUnableToOpenFile ? reporter.Report(closed) : closed;
}

}  // namespace generalutilities
