// ITD files on the disk.

#pragma once

#include <generalutilities/itd/archive.h>

#include "database/temporary_folder.h"
#include "itd/sample_document.h"
#include "itd/segment_notation.h"

#include <gtest/gtest.h>

namespace generalutilities {

/// Where the length of the compressed text part stands in the files that are written here.
inline constexpr std::uint32_t SampleLengthOffset = 25 + 2 + 3;

/// A new file each time: to empty one that is there makes some file systems wait for the disk.
inline void WriteNewFile(const std::u16string& path, std::string_view bytes) {
    std::filesystem::remove(path);
    WriteFile(path, bytes);
}

/// Puts a text part into a file whose envelope has its length at that offset.
inline void PutTextPart(const std::u16string& path, std::uint32_t lengthOffset,
                        std::string_view textPart) {
    std::uint32_t packed = 0;
    ASSERT_EQ(PackTextPart(path, lengthOffset + 4, textPart, packed), S_OK);
    ASSERT_EQ(CloseTextPart(path, lengthOffset, packed, TextPartTrailer(textPart)), S_OK);
}

inline void WriteItdFile(const std::u16string& path, std::string_view textPart) {
    using namespace std::string_literals;
    WriteNewFile(path, "SDLXARCH\2\0\0\0v1\3\0\0\0fffopaque..\xF0\0\0\0\0"s);
    PutTextPart(path, SampleLengthOffset, textPart);
}

/// A document from en-US to de-DE with codes, a comment and statuses, whose file may hold the
/// target column first.
inline std::string SampleTextPart(bool targetFirst = false) {
    ItdDocument document;
    document.headerBytes = SampleHeader(2, true) + SampleStatusTable(2);
    constexpr std::u16string_view Columns[2][4] = {
        {u"F lc=\"en-US\"¦T one¦C <b>¦T two", u"T a{b\\", u"C x", u"L "},
        {u"F lc=\"de-DE\"¦T eins¦C <b>¦T zwei", u"T ", u"C x", u"L "}};
    for (const bool target : {false, true}) {
        for (std::uint32_t i = 0; i < 4; ++i) {
            (target != targetFirst ? document.targetSegments : document.sourceSegments)
                .push_back(SegmentOf(document, Columns[target ? 1 : 0][i], i + 1));
        }
    }
    document.commentStrings = {u"<?x?><c><Comment user=\"Ann\">note</Comment></c>"};
    document.footerBytes = "end";
    return SerializeTextPart(document);
}

}  // namespace generalutilities
