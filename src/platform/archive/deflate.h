#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

/// Streams in the zlib format, by libdeflate: whole in memory, which is what makes it quick.
namespace generalutilities::archive {

enum class Unpacked {
    Complete,
    Damaged,
    TooLarge,  ///< more bytes than the limit allows
};

/// Gives memory for so many bytes, in the place of what it gave before; null when there is none.
/// Memory that is not touched should cost nothing, as more is asked for than is needed.
using Room = std::function<char*(std::size_t)>;

/// Unpacks a stream, which tells nowhere how long it becomes. On `Complete` the bytes are in the
/// memory given last, and `size` is their number. Throws `std::bad_alloc`.
Unpacked Unpack(std::string_view stream, std::size_t limit, const Room& room, std::size_t& size);

/// The most bytes that packing so many can take.
std::size_t PackedBound(std::size_t size);
/// Packs into `room`, which holds `PackedBound` bytes; gives the length. Throws `std::bad_alloc`.
std::size_t Pack(std::string_view bytes, char* room);

std::uint32_t Crc32(std::string_view bytes);

}  // namespace generalutilities::archive
