#pragma once

#include <generalutilities/database.h>

#include "extview/duplicate_marking.h"
#include "extview/duplicate_rows.h"
#include "extview/text_digest.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace generalutilities {

/// The duplicate pass at a cost linear in the rows, however many of them share a source key.
///
/// It decides the same as reading the rows of the key anew for each row. Rows with one stored key
/// and equal texts are a class. A row that is visited marks all of a class but the class's first
/// row and, if it belongs to the class, itself; the first row is never marked. So as soon as the
/// members of a class visit it, its first row alone is left without a mark, and where the stored
/// keys are those that belong to the texts, the members do visit it, all of them. Then one reading
/// of the rows in the order of the file is enough. Where a stored key is another one, rows may
/// visit classes that are not theirs, and the visits are followed one by one in their order.
///
/// Of a row a digest of its texts is kept, 24 bytes in all, and no text. Identifiers that do not
/// ascend, or that visits have to be followed by, are read anew and take as much again.
class DuplicateGroups {
  public:
    DuplicateGroups(Database& project, const DuplicateSearch& duplicateSearch);

    /// Reads the rows and decides which to mark, with a call of `countRow` for each row. `outer`
    /// holds the same rows in the order of the visits. False when the rows cannot be told apart by
    /// identifier, or not be read: this class is of no use then.
    bool Decide(DuplicateRows& outer, const std::function<void()>& countRow);
    void WriteMarks();

  private:
    struct Member {
        TextDigest::Value texts;  ///< of key and forms: what the members of a class share
        std::uint32_t row = 0;    ///< counted in the order of the file
        std::uint32_t kept = 0;   ///< in a class's first member; see `Visit`
    };
    using Members = std::vector<Member>;

    void Read(std::size_t count, const std::function<void()>& countRow);
    bool ReadIds();
    void FollowVisits(DuplicateRows& outer);
    void Visit(Members::iterator first, const Member* visitor);
    void MarkRow(const Member& member) { marked[member.row] = true; }
    TextDigest::Value DigestOf(std::u16string_view key, DuplicateRows& row) const;

    Database& database;
    const DuplicateSearch& search;
    const TextDigest digest;
    DuplicateRows rows;  ///< in the order of the file
    Members members;     ///< by class, in each class by row
    std::vector<bool> marked;
    std::vector<std::uint64_t> ids;  ///< digests by row, if they are asked for
    bool keysBelong = true;          ///< all stored keys are those of the source texts
    bool idsAscend = true;           ///< so all are different
};

}  // namespace generalutilities
