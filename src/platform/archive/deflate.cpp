#include "platform/archive/deflate.h"

#include <algorithm>
#include <libdeflate.h>
#include <memory>
#include <new>
#include <sys/mman.h>

namespace generalutilities::archive {

namespace {

template <class Tool>
auto Own(Tool* tool, void (*end)(Tool*)) {
    if (tool == nullptr) {
        throw std::bad_alloc();
    }
    return std::unique_ptr<Tool, void (*)(Tool*)>(tool, end);
}

constexpr int Level = 6;

/// Has the system give new memory in large pages where it can, as most of it is written to once.
void PreferLargePages(char* memory, std::size_t size) {
    constexpr std::size_t PageSize = std::size_t{2} << 20;
    void* start = memory;
    if (std::align(PageSize, PageSize, start, size) != nullptr) {
        madvise(start, size - size % PageSize, MADV_HUGEPAGE);
    }
}

}  // namespace

Unpacked Unpack(std::string_view stream, std::size_t limit, const Room& room, std::size_t& size) {
    const auto tool = Own(libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
    // Text of two-byte units seldom shrinks to less than a sixteenth. Where it did, unpacking
    // begins anew with four times the room, so that all in all little is done twice.
    for (std::size_t most = std::max<std::size_t>(stream.size() * 16, 4096);; most *= 4) {
        most = std::min(most, limit);
        char* const bytes = room(most);
        if (bytes == nullptr) {
            throw std::bad_alloc();
        }
        PreferLargePages(bytes, most);
        switch (libdeflate_zlib_decompress(tool.get(), stream.data(), stream.size(), bytes, most,
                                           &size)) {
            case LIBDEFLATE_SUCCESS:
                return Unpacked::Complete;
            case LIBDEFLATE_INSUFFICIENT_SPACE:
                if (most == limit) {
                    return Unpacked::TooLarge;
                }
                break;
            default:
                return Unpacked::Damaged;
        }
    }
}

std::size_t PackedBound(std::size_t size) {
    return libdeflate_zlib_compress_bound(nullptr, size);
}

std::size_t Pack(std::string_view bytes, char* room) {
    const auto tool = Own(libdeflate_alloc_compressor(Level), libdeflate_free_compressor);
    return libdeflate_zlib_compress(tool.get(), bytes.data(), bytes.size(), room,
                                    PackedBound(bytes.size()));
}

std::uint32_t Crc32(std::string_view bytes) {
    return libdeflate_crc32(0, bytes.data(), bytes.size());
}

}  // namespace generalutilities::archive
