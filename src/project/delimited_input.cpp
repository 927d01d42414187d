// The heading names the columns: "source", "id", "file", "lexicon", "frequency", and per language
// "target:fr-FR", "status:fr-FR", "comment:fr-FR", "percentage:fr-FR".

#include <generalutilities/error.h>
#include <generalutilities/project/inputs.h>
#include <generalutilities/project/language_tags.h>
#include <generalutilities/project/status_names.h>

#include "platform/delimited_text/delimited_text.h"
#include "platform/files/utf8.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace generalutilities {
namespace {

constexpr std::size_t NoColumn = static_cast<std::size_t>(-1);

enum RowColumn : std::size_t { Id, Source, File, LexiconColumn, Frequency, RowColumnCount };
constexpr std::u16string_view RowColumnNames[RowColumnCount] = {u"id", u"source", u"file",
                                                                u"lexicon", u"frequency"};

enum LanguageColumn : std::size_t { Target, Status, Comment, Percentage, LanguageColumnCount };
constexpr std::u16string_view LanguageColumnNames[LanguageColumnCount] = {
    u"target", u"status", u"comment", u"percentage"};

std::u16string_view Trim(std::u16string_view text) {
    const std::size_t first = text.find_first_not_of(u" \t");
    return first == std::u16string_view::npos
               ? std::u16string_view()
               : text.substr(first, text.find_last_not_of(u" \t") + 1 - first);
}

std::u16string LowerAscii(std::u16string_view text) {
    std::u16string lower(text);
    for (char16_t& unit : lower) {
        unit = unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
    }
    return lower;
}

template <class List, class Value>
std::size_t IndexOf(const List& list, const Value& value) {
    const auto found = std::find(std::begin(list), std::end(list), value);
    return found == std::end(list) ? NoColumn : static_cast<std::size_t>(found - std::begin(list));
}

std::optional<std::int32_t> ParseCount(std::u16string_view text) {
    std::string digits;
    for (const char16_t unit : Trim(text)) {
        digits += unit < 0x80 ? static_cast<char>(unit) : '?';
    }
    if (digits.ends_with('%')) {
        digits.pop_back();
    }
    std::int32_t number = 0;
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    return error == std::errc() && stop == end && number >= 0 ? std::optional(number)
                                                              : std::nullopt;
}

std::optional<bool> ParseYesNo(std::u16string_view text) {
    const std::u16string lower = LowerAscii(Trim(text));
    constexpr std::u16string_view Yes[] = {u"yes", u"true", u"1", u"-1", u"x"};
    constexpr std::u16string_view No[] = {u"", u"no", u"false", u"0"};
    if (IndexOf(Yes, lower) != NoColumn) {
        return true;
    }
    return IndexOf(No, lower) != NoColumn ? std::optional(false) : std::nullopt;
}

std::string Quoted(std::u16string_view text) {
    return "\"" + files::ToUtf8Lossy(text) + "\"";
}

class DelimitedSource final : public RowSource {
  public:
    explicit DelimitedSource(const DelimitedInput& input)
        : settings(input),
          name(files::ToUtf8Lossy(input.path)),
          reader(delimited_text::Open(input.path, {input.delimiter, input.quoted})),
          maker(input.textForm) {
        ReadHeading();
    }

    const std::vector<std::int32_t>& Languages() const override { return languages; }
    std::uint64_t RowsAtMost() const override { return reader->RowsAtMost(); }

    bool Next(NewProjectRow& row) override {
        do {
            if (!reader->Next(cells)) {
                return false;
            }
        } while (IsBlank());
        if (cells.cells.size() != columnCount) {
            Fail("has " + std::to_string(cells.cells.size()) + " cells where the heading has " +
                 std::to_string(columnCount) +
                 "; is a delimiter missing, or does one stand in a cell without quotes?");
        }
        Fill(row);
        return true;
    }

    std::vector<std::string> Notes() const override {
        std::vector<std::string> notes;
        for (const std::string& column : unusedColumns) {
            notes.push_back(name + ": the column " + column +
                            " has no meaning here and was left out");
        }
        if (blankRows > 0) {
            notes.push_back(name + ": " + std::to_string(blankRows) +
                            " rows without any text were left out");
        }
        return notes;
    }

  private:
    [[noreturn]] void Fail(const std::string& problem) const {
        throw Error(ErrorInvalidData, Place() + ": " + problem);
    }
    std::string Place() const { return name + ", line " + std::to_string(cells.line); }

    void ReadHeading() {
        if (!reader->Next(cells)) {
            throw Error(ErrorInvalidData,
                        name + ": is empty; expected a heading row with the names of the columns");
        }
        rowColumns.fill(NoColumn);
        columnCount = cells.cells.size();
        for (std::size_t i = 0; i < columnCount; ++i) {
            NameColumn(i, Trim(cells.cells[i]));
        }
        if (rowColumns[Source] == NoColumn) {
            Fail("the heading has no column \"source\"; it has " + Quoted(Headings()) +
                 ". Is the delimiter right?");
        }
        if (languages.empty()) {
            Fail("the heading has no target language; name a column like \"target:fr-FR\"");
        }
    }

    std::u16string Headings() const {
        std::u16string list;
        for (const std::u16string& cell : cells.cells) {
            list.append(list.empty() ? u"" : u" | ").append(cell.substr(0, 40));
        }
        return list;
    }

    void NameColumn(std::size_t position, std::u16string_view heading) {
        const std::size_t colon = std::min(heading.find(u':'), heading.size());
        const std::u16string kind = LowerAscii(Trim(heading.substr(0, colon)));
        const std::size_t rowColumn = IndexOf(RowColumnNames, kind);
        const std::size_t languageColumn = IndexOf(LanguageColumnNames, kind);
        std::size_t* place = nullptr;
        if (rowColumn != NoColumn && colon == heading.size()) {
            place = &rowColumns[rowColumn];
        } else if (languageColumn != NoColumn) {
            place = &ColumnsOf(Language(heading, colon))[languageColumn];
        } else {
            unusedColumns.push_back(Quoted(heading));
            return;
        }
        if (*place != NoColumn) {
            Fail("the heading has two columns " + Quoted(heading));
        }
        *place = position;
    }

    std::int32_t Language(std::u16string_view heading, std::size_t colon) const {
        if (colon == heading.size()) {
            if (!settings.language) {
                Fail("the column " + Quoted(heading) + " has no language; write it like " +
                     Quoted(std::u16string(heading) + u":fr-FR"));
            }
            return *settings.language;
        }
        const std::u16string_view tag = Trim(heading.substr(colon + 1));
        const auto langId = LangIdOfTag(tag);
        if (!langId) {
            Fail("the column " + Quoted(heading) + ": the language " + Quoted(tag) +
                 " is unknown; give a tag like fr-FR or a Windows language identifier");
        }
        return *langId;
    }

    std::array<std::size_t, LanguageColumnCount>& ColumnsOf(std::int32_t langId) {
        const std::size_t known = IndexOf(languages, langId);
        if (known != NoColumn) {
            return languageColumns[known];
        }
        languages.push_back(langId);
        languageColumns.emplace_back().fill(NoColumn);
        return languageColumns.back();
    }

    /// Spreadsheets leave rows of delimiters alone at the end of a table.
    bool IsBlank() {
        const bool isBlank = std::all_of(cells.cells.begin(), cells.cells.end(),
                                         [](const auto& cell) { return Trim(cell).empty(); });
        blankRows += isBlank ? 1 : 0;
        return isBlank;
    }

    std::u16string_view Cell(std::size_t column) const {
        return column == NoColumn ? std::u16string_view() : cells.cells[column];
    }

    std::u16string_view Text(std::size_t column) const {
        const std::u16string_view text = Cell(column);
        if (settings.textForm != TextForm::Segment && HasCodeMarkers(text)) {
            Fail("column " + std::to_string(column + 1) +
                 ": U+0006, U+0007 and U+0008 mark codes and cannot stand in plain text");
        }
        return text;
    }

    template <class Parse>
    auto Value(std::size_t column, Parse parse, std::string_view expected) const {
        const auto value = parse(Cell(column));
        if (!value) {
            Fail("column " + std::to_string(column + 1) + ": " + Quoted(Cell(column)) + " is not " +
                 std::string(expected));
        }
        return *value;
    }

    std::int32_t Number(std::size_t column) const {
        return Trim(Cell(column)).empty() ? 0 : Value(column, ParseCount, "a number from 0 up");
    }

    void Fill(NewProjectRow& row) {
        const std::u16string_view source = Text(rowColumns[Source]);
        if (source.empty()) {
            Fail("the row has no source text");
        }
        row.place = Place();
        row.id = Cell(rowColumns[Id]);
        if (rowColumns[Id] != NoColumn && row.id.empty()) {
            Fail("the row has no identifier");
        }
        row.source = maker.Source(source);
        row.fileSpec = Cell(rowColumns[File]);
        if (row.fileSpec.empty()) {
            row.fileSpec = settings.path;
        }
        row.isLexicon = Value(rowColumns[LexiconColumn], ParseYesNo, "yes or no");
        row.frequency = Number(rowColumns[Frequency]);
        row.translations.resize(languages.size());
        for (std::size_t i = 0; i < languages.size(); ++i) {
            const auto& columns = languageColumns[i];
            Translation& translation = row.translations[i];
            translation.target = maker.Translation(Text(columns[Target]));
            translation.comments = Cell(columns[Comment]);
            translation.status = Value(columns[Status], ParseStatus, statusExpected);
            translation.percentage = Number(columns[Percentage]);
        }
    }

    DelimitedInput settings;
    std::string name;  ///< for messages
    std::unique_ptr<delimited_text::Reader> reader;
    delimited_text::Row cells;  ///< the row being read
    SegmentTextMaker maker;
    std::size_t columnCount = 0;
    std::array<std::size_t, RowColumnCount> rowColumns{};
    std::vector<std::int32_t> languages;
    std::vector<std::array<std::size_t, LanguageColumnCount>> languageColumns;
    std::vector<std::string> unusedColumns;
    std::uint64_t blankRows = 0;
    const std::string statusExpected =
        "a status; use a number or names joined by \"+\": " + files::ToUtf8Lossy(StatusNameList());
};

}  // namespace

std::unique_ptr<RowSource> OpenDelimitedInput(const DelimitedInput& input) {
    return std::make_unique<DelimitedSource>(input);
}

}  // namespace generalutilities
