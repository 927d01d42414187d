#pragma once

#include "database/temporary_folder.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace generalutilities {

/// The cells of a file of cases in the folder data/, row by row. Cells are parted by tabs; a line
/// or cell that begins with "# " is a remark. Control pictures stand for controls (␊ for a line
/// feed), and ⟨D800⟩ for the unit or byte of that number.
inline std::vector<std::vector<std::u16string>> CaseTable(const std::string& name) {
    std::vector<std::vector<std::u16string>> rows;
    std::istringstream lines(ReadFile(std::string(TEST_DATA_DIR "/") + name));
    for (std::string line; std::getline(lines, line);) {
        const std::u16string raw = std::filesystem::path(line).u16string();  // UTF-8 as it is
        if (raw.empty() || raw.starts_with(u"# ")) {
            continue;
        }
        auto& row = rows.emplace_back(1);
        for (std::size_t i = 0; i < raw.size() && raw.compare(i, 3, u"\t# ") != 0; ++i) {
            char16_t unit = raw[i];
            if (unit == u'\t') {
                row.emplace_back();
                continue;
            }
            if (unit == u'⟨') {
                const std::size_t end = raw.find(u'⟩', i);
                unit = 0;
                for (++i; i < end; ++i) {
                    unit = static_cast<char16_t>(
                        unit * 16 + (raw[i] <= u'9' ? raw[i] - u'0' : raw[i] - u'A' + 10));
                }
            } else if (unit >= 0x2400 && unit < 0x2420) {
                unit = static_cast<char16_t>(unit - 0x2400);
            }
            row.back() += unit;
        }
    }
    EXPECT_FALSE(rows.empty()) << name;
    return rows;
}

/// A cell of bytes.
inline std::string Bytes(const std::u16string& cell) {
    std::string bytes;
    for (const char16_t unit : cell) {
        bytes += static_cast<char>(unit);
    }
    return bytes;
}

/// A decimal number, or a hexadecimal one behind 0x.
inline std::int32_t Number(const std::u16string& cell) {
    return static_cast<std::int32_t>(std::stoll(Bytes(cell), nullptr, 0));
}

}  // namespace generalutilities
