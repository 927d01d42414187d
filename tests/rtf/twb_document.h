#pragma once

#include "extview/rtf/twb_import.h"
#include "memory_file.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace generalutilities::testing {

/// The head of a bilingual document, with the numbers that the export gives to the styles.
inline const std::string TwbHead =
    "{\\rtf1\\ansi{\\fonttbl{\\f1\\fmodern\\fcharset0 Courier New;}}{\\stylesheet{\\s0 Normal;}"
    "{\\cs1\\additive tw4winMark;}{\\*\\cs5\\additive tw4winExternal;}"
    "{\\*\\cs6\\additive tw4winInternal;}}\n\\pard\\s0 ";

/// A document of runs that are parted by "¦". The first letter of a run is its style: x external,
/// m mark, i internal, t any other; n is text outside of every group. Braces and backslashes of the
/// text are escaped, except in a run that begins with "r": that one is RTF as it is.
inline std::string TwbDocument(std::u16string_view runs) {
    std::string document = TwbHead;
    while (!runs.empty()) {
        const std::size_t end = std::min(runs.find(u'¦'), runs.size());
        const std::u16string_view run = runs.substr(0, end);
        const char16_t style = run.empty() ? u'r' : run.front();
        document += style == u'x'   ? "{\\cs5 "
                    : style == u'm' ? "{\\plain\\cs1\\v "
                    : style == u'i' ? "{\\cs6 "
                    : style == u't' ? "{\\f1 "
                                    : "";
        for (const char16_t unit : run.substr(run.empty() ? 0 : 1)) {
            const bool isEscaped = style != u'r' && (unit == u'{' || unit == u'}' || unit == u'\\');
            document += isEscaped ? "\\" : "";
            document += static_cast<char>(unit);
        }
        document += style == u'r' || style == u'n' ? "" : "}\n";
        runs.remove_prefix(std::min(end + 1, runs.size()));
    }
    return document + "}";
}

/// A `CTWBImport` of a file in memory.
class TwbImportOf : public CTWBImport {
  public:
    explicit TwbImportOf(std::string content) : file(std::move(content)) {}
    bool OpenFile() override {
        CTWBImport::OpenFile();  // the file that `sourceFile` names does not exist
        return Open(FileOf(file));
    }
    std::string file;
    std::size_t mostCells = 0;  ///< of the rows that `RowsOf` has read
};

/// The rows of a document, as "id|source|target / ...".
inline std::u16string RowsOf(TwbImportOf& import) {
    EXPECT_TRUE(import.OpenFile());
    EXPECT_TRUE(import.ReadHeader());
    std::u16string rows, id, source, target, comments = u"before";
    for (std::int32_t status = 7; import.NextRow(id, source, target, comments, status);) {
        EXPECT_EQ(comments, u"");
        EXPECT_EQ(status, -1);
        import.mostCells = std::max(import.mostCells, import.CellCount());
        rows += (rows.empty() ? u"" : u" / ") + id + u"|" + source + u"|" + target;
    }
    import.CloseFile();
    return rows;
}

}  // namespace generalutilities::testing
