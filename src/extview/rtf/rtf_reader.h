#pragma once

#include "extview/rtf/control_word.h"
#include "extview/rtf/rtf_file_pager.h"
#include "extview/rtf/rtf_tables.h"
#include "extview/rtf/run_text.h"
#include "extview/rtf/word_memory.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace generalutilities {

/// A pull parser for RTF files, made for one job: the text of a reviewed file with its exact
/// character values.
///
/// It cuts the file into text runs and code runs, in turn, and hands them to three operations of a
/// derived class. Each can stop the parse by returning false; `Parse` then goes on where it
/// stopped. It knows the font table (a font's character set decides what the `\'hh` bytes mean),
/// the style sheet, groups, and Unicode escapes with their fallbacks; everything else is stepped
/// over. The whole picture is in docs/rtf-reading.md.
///
/// Positions are byte offsets in the file. A text is never read as a whole, groups may nest as deep
/// as the file likes, and every step is linear in the bytes it passes.
class CRTFReader {
  public:
    CRTFReader();
    virtual ~CRTFReader();
    CRTFReader(const CRTFReader&) = delete;
    CRTFReader& operator=(const CRTFReader&) = delete;

    /// Resets and opens a file. False if it cannot be opened or has 4 GiB or more.
    bool Open(std::u16string_view fileName);
    bool Open(std::unique_ptr<files::FileReader> file);

    /// Back to the state before `Open`. The names of styles and the reported control words stay.
    void Reset();

    /// Reads font table and style sheet and moves to the first row or paragraph of the body. False
    /// if one of the two tables is missing or has no end. To be called once, after `Open`.
    bool Prepare();

    /// Parses on. True when an operation stopped it, false when the file has ended. Text that
    /// stands at the end of the file, with nothing behind it that ends its run, is not handed on.
    bool Parse();

    void Close();

    std::int32_t CurrentStyle() const { return groups.back().style; }
    std::uint32_t Position() const { return position; }
    std::uint32_t FileSize() const { return pager.FileSize(); }
    /// True when the system could not read the file to its end: what was parsed is not all of it.
    bool ReadFailed() const { return pager.ReadFailed(); }

    char ByteAt(std::uint32_t offset) { return pager.ByteAt(offset); }
    /// The lowest offset at or above `start` and below `end` of `text`, or
    /// `RtfFilePager::NotFound`.
    std::uint32_t FindInFile(std::uint32_t start, std::string_view text,
                             std::uint32_t end = RtfFilePager::NotFound) {
        return pager.Find(start, text, end);
    }
    void ReadBytes(std::uint32_t start, std::uint32_t length, std::string& out) {
        pager.Read(start, length, out);
    }

  protected:
    /// A text run has ended. `start` is where it began, `end` the parser's position.
    virtual bool OnText(std::u16string_view text, std::uint32_t start, std::uint32_t end);
    /// A code run has ended. `sawControlWord` tells whether a reported word was in it.
    virtual bool OnCodes(std::uint32_t start, std::uint32_t end, bool sawControlWord);
    /// A word of `controlWords` was met.
    virtual bool OnControlWord(std::string_view word);

    rtf::FontCodePages fontCodePages;
    rtf::StyleNames styleNames;
    rtf::ControlWordSet controlWords;  ///< filled by the derived class before a file is opened

  private:
    bool ReadTable(std::string_view controlWord, std::string& content, std::uint32_t& end);
    std::uint32_t GroupEnd(std::uint32_t start, bool& closed);
    void WalkHead(std::uint32_t end);

    std::size_t AddText(std::string_view bytes);
    std::uint32_t QuietWords(std::string_view bytes);
    rtf::WordRun ReadQuietWords(std::string_view bytes) const;
    bool ParseEscape(std::string_view rest);
    std::size_t AddEscapes(std::string_view bytes);
    bool ParseControlWord();
    void SkipDestination();

    bool EndText();
    bool EndCodes();
    void AddCharacter(char16_t character);
    void AddPlainText(std::string_view bytes);
    void AddHexRun();

    void OpenGroup() { groups.push_back(groups.back()); }
    void CloseGroup();

    RtfFilePager pager;
    std::uint32_t position = 0;   ///< the next byte to look at
    std::uint32_t runStart = 0;   ///< where the current run began
    std::uint32_t skipCount = 0;  ///< how many characters of a fallback are still to be dropped
    bool inCodes = true;          ///< the current run is a code run
    bool sawControlWord = false;  ///< a reported word was met in this code run
    rtf::RunText runText;         ///< the characters of the current text run
    /// One entry per open group and one below; never empty.
    std::vector<rtf::GroupState> groups{rtf::GroupState{}};
    rtf::WordMemory memory;
    std::string nameSpill;  ///< see `rtf::ReadControlWord`
    std::string hexBytes;
    std::u16string decoded;
};

}  // namespace generalutilities
