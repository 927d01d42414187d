#pragma once

#include <generalutilities/database.h>

#include "extview/progress.h"
#include "extview/row_selection.h"

#include <cstdint>

namespace generalutilities {

/// What the duplicate pass has to know about the running export.
struct DuplicateSearch {
    const RowQueries& queries;
    bool uniquePairsOnly = false;
    std::int32_t sourceLangId = 0;
    std::int32_t targetLangId = 0;
    std::int32_t fileId = 0;
    IExtViewProgress* progress = nullptr;  ///< may be null; gets 0 to 60 percent
};

/// Clears the column `Done` of the selected rows and, with `uniquePairsOnly`, sets it in every row
/// that another one stands for: one whose source and target are equal but for numbers and codes.
/// False when the rows could not be read; the export goes on without the marks then.
bool MarkDuplicates(Database& database, const DuplicateSearch& search);

}  // namespace generalutilities
