// The head of a file: the two tables, where the body begins, and the state of groups and fonts
// there.

#include "extview/rtf/byte_scan.h"
#include "extview/rtf/rtf_reader.h"

#include <algorithm>

namespace generalutilities {

/// Reads what stands between a control word and the end of its group; false if the word is missing
/// or the group has no end. `end` is the offset of the closing brace.
bool CRTFReader::ReadTable(std::string_view controlWord, std::string& content, std::uint32_t& end) {
    const std::uint32_t found = FindInFile(0, controlWord);
    if (found == RtfFilePager::NotFound) {
        return false;
    }
    const std::uint32_t start = found + static_cast<std::uint32_t>(controlWord.size());
    bool closed = false;
    const std::uint32_t behind = GroupEnd(start, closed);
    if (!closed || behind >= FileSize()) {
        return false;  // nothing may follow a table that ends with the file
    }
    end = behind - 1;
    ReadBytes(start, end - start, content);
    return true;
}

bool CRTFReader::Prepare() {
    std::string content;
    std::uint32_t end = 0;
    if (!ReadTable("\\fonttbl", content, end)) {
        return false;
    }
    rtf::ReadFontTable(content, fontCodePages);
    if (!ReadTable("\\stylesheet", content, end)) {
        return false;
    }
    rtf::ReadStyleSheet(content, styleNames);

    // The nearer of the two; `NotFound` is the highest offset.
    const std::uint32_t paragraph = FindInFile(end, "\\pard");
    const std::uint32_t body = std::min(paragraph, FindInFile(end, "\\intbl", paragraph));
    WalkHead(body);
    position = body;
    return true;
}

/// Brings groups, fonts, styles and fallback counts to where they stand at `end`.
void CRTFReader::WalkHead(std::uint32_t end) {
    groups.assign(1, rtf::GroupState{});
    std::uint32_t offset = 0;
    while (offset < end) {
        const std::string_view rest = pager.BytesFrom(offset);
        if (rest.empty()) {
            return;
        }
        switch (rest.front()) {
            case '{':
                OpenGroup();
                ++offset;
                break;
            case '}':
                CloseGroup();
                ++offset;
                break;
            case '\\': {
                const char next = rest.size() > 1 ? rest[1] : pager.ByteAt(offset + 1);
                if (std::string_view("\\{}'~-_:").find(next) != std::string_view::npos) {
                    offset += 2;
                    break;
                }
                const rtf::ControlWord word = rtf::ReadControlWord(pager, offset + 1, nameSpill);
                if (controlWords.MayMatter(word.name)) {
                    groups.back().Set(rtf::MeaningOf(word.name).kind, word.argument);
                }
                offset = word.end;
                break;
            }
            default:
                offset += static_cast<std::uint32_t>(
                    std::max<std::size_t>(rtf::PlainLength(rest), 1));  // 0 at a line end
        }
    }
}

}  // namespace generalutilities
