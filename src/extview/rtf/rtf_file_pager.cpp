#include "extview/rtf/rtf_file_pager.h"

#include <algorithm>
#include <cstring>

namespace generalutilities {

RtfFilePager::RtfFilePager() = default;

bool RtfFilePager::Open(std::u16string_view fileName) {
    return Open(files::OpenForReading(fileName));
}

bool RtfFilePager::Open(std::unique_ptr<files::FileReader> opened) {
    Close();
    if (!opened || opened->Size() >= NotFound) {
        return false;
    }
    file = std::move(opened);
    fileSize = static_cast<std::uint32_t>(file->Size());
    return true;
}

void RtfFilePager::Close() {
    file.reset();
    fileSize = 0;
    readFailed = false;
    for (Page* page : {&current, &other}) {
        page->base = NotFound;
        page->length = 0;
    }
}

std::string_view RtfFilePager::TurnTo(std::uint32_t offset) {
    if (offset >= fileSize) {
        return {};
    }
    std::swap(current, other);
    if (!current.Holds(offset)) {
        const std::uint32_t base = offset - offset % PageSize;
        const std::uint32_t wanted = std::min(PageSize, fileSize - base);
        std::size_t got = 0;
        if (!file->ReadAt(base, current.bytes.get(), wanted, got)) {
            got = 0;
        }
        current.base = base;
        current.length = static_cast<std::uint32_t>(std::min<std::size_t>(got, wanted));
        if (current.length < wanted) {
            fileSize = base + current.length;
            readFailed = true;
            if (other.base >= fileSize) {
                other.length = 0;
            }
        }
        if (!current.Holds(offset)) {
            return {};
        }
    }
    const std::uint32_t at = offset - current.base;
    return {current.bytes.get() + at, current.length - at};
}

bool RtfFilePager::StandsAt(std::uint32_t offset, std::string_view text) {
    for (const char byte : text) {
        if (offset >= fileSize || ByteAt(offset) != byte) {
            return false;
        }
        ++offset;
    }
    return true;
}

std::uint32_t RtfFilePager::Find(std::uint32_t start, std::string_view text, std::uint32_t end) {
    const auto ifBefore = [end](std::uint32_t place) { return place < end ? place : NotFound; };
    for (std::uint32_t offset = start;;) {
        const std::string_view bytes = offset < end ? BytesFrom(offset) : std::string_view();
        if (bytes.empty()) {
            return NotFound;
        }
        if (const void* found = memmem(bytes.data(), bytes.size(), text.data(), text.size())) {
            return ifBefore(offset + static_cast<std::uint32_t>(static_cast<const char*>(found) -
                                                                bytes.data()));
        }
        // What begins in this page and ends in the next one.
        const std::uint32_t pageEnd = offset + static_cast<std::uint32_t>(bytes.size());
        const auto tail = static_cast<std::uint32_t>(std::min(bytes.size(), text.size() - 1));
        for (std::uint32_t candidate = pageEnd - tail; candidate < pageEnd; ++candidate) {
            if (StandsAt(candidate, text)) {
                return ifBefore(candidate);
            }
        }
        offset = pageEnd;
    }
}

void RtfFilePager::Read(std::uint32_t start, std::uint32_t length, std::string& out) {
    out.clear();
    while (out.size() < length) {
        const std::string_view bytes = BytesFrom(start + static_cast<std::uint32_t>(out.size()));
        if (bytes.empty()) {
            return;
        }
        out.append(bytes.substr(0, length - out.size()));
    }
}

}  // namespace generalutilities
