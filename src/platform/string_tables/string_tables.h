#pragma once

#include <generalutilities/automation/string_table.h>

#include <optional>
#include <string_view>

/// Looking texts up by number, in a table at hand or in that of a loaded module.
///
/// Numbers are grouped in blocks of 16, and a table has a block when it has a text of that block.
/// So there are three answers: a text; an empty text, where the table has the block and not the
/// number; nothing, where it has not even the block. Blocks are counted in 16 bits: numbers that
/// differ by a multiple of 1,048,576 are one number.
namespace generalutilities {

std::optional<std::u16string_view> FindString(const StringTable& table, std::int32_t id) noexcept;

/// Looks up in the table that a module exports. `module` is what dlopen gave, or anything else: it
/// is compared with the modules that are loaded and not followed.
std::optional<std::u16string_view> FindModuleString(const void* module, std::int32_t id) noexcept;

}  // namespace generalutilities
