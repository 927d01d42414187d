#pragma once

#include <generalutilities/database.h>

#include "extview/duplicate_marking.h"
#include "extview/duplicate_rows.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace generalutilities {

/// The duplicate pass at a cost linear in the rows, however many of them share a source key.
///
/// It decides the same as reading the rows of the key anew for each row, and rests on two facts.
/// A group of at most one row has nothing to mark, so only keys that stand in two rows or more are
/// ever asked for, each once. And once a row has been visited, at most two of the rows equal to it
/// are left without a mark, itself and the first of its group, so that the lists of unmarked rows
/// shrink to nothing as the visits go on. The marks are kept in memory and written at the end,
/// which needs identifiers that tell the rows apart.
class DuplicateGroups {
  public:
    DuplicateGroups(Database& project, const DuplicateSearch& duplicateSearch)
        : database(project), search(duplicateSearch) {}

    /// Reads the keys of the selection. False when the rows cannot be told apart by identifier, or
    /// not be read: this class is of no use then.
    bool Prepare();
    /// Marks the rows that are equal to the current row of `outer`, unless it is marked itself.
    void MarkEqualRows(DuplicateRows& outer);
    void WriteMarks();

  private:
    struct Group {
        std::u16string query;
        /// By `PairForm`: the identifiers without a mark, in the order of the query.
        std::unordered_map<std::u16string, std::vector<std::u16string>> unmarked;
        bool hasMarks = false;
    };

    Group& GroupOf(const std::u16string& key);

    Database& database;
    const DuplicateSearch& search;
    std::unordered_set<std::size_t> sharedKeys;  ///< hashes of the keys of two rows or more
    std::unordered_map<std::u16string, Group> groups;
    std::unordered_set<std::u16string> marked;  ///< identifiers
};

}  // namespace generalutilities
