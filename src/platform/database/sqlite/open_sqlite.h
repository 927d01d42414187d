#pragma once

#include <generalutilities/database.h>

#include <memory>
#include <string_view>

namespace generalutilities::sqlite {

/// Opens or creates the SQLite file at `path`; null with the reason in `failure` when that fails.
std::unique_ptr<Database> OpenFile(std::u16string_view path, OpenMode mode,
                                   DatabaseFailure& failure);

}  // namespace generalutilities::sqlite
