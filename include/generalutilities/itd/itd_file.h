#pragma once

#include <generalutilities/itd/envelope.h>
#include <generalutilities/itd/text_part.h>

#include <string>
#include <string_view>

/// Whole ITD files for a host that reads them itself.
namespace generalutilities {

/// The bytes of a file's text part. Throws `Error`: which file, and what is wrong with it.
std::string ReadItdTextPart(std::u16string_view path, ItdArchiveHeader& archive);

/// An open document with its source column first.
struct ItdFile {
    ItdArchiveHeader archive;
    ItdTextHeader header;
    ItdDocument document;
    bool isReversed = false;  ///< the file holds the columns the other way round
};

/// Throws `Error`.
ItdFile ReadItdFile(std::u16string_view path);

/// Writes the document into `path`, an existing file that becomes a copy of the reference with that
/// text part, and reads the result: every record is as it is in the document. The reference is
/// opened for reading alone. Throws `Error`; then what `path` holds is of no use.
void WriteItdCopy(std::u16string_view reference, ItdFile& file, std::u16string_view path);

}  // namespace generalutilities
