// Files that nobody would write: cut anywhere, with any byte changed, and with more of everything
// than a file has. An import answers with success or with "not enough fields", and costs no more
// than the file is long: the long rounds print how the time grows when the input doubles.

#include "case_table.h"
#include "extview/rtf/rtf_import.h"
#include "project.h"
#include "rounds.h"
#include "rtf/memory_file.h"
#include "rtf/twb_document.h"

#include <array>
#include <ctime>
#include <limits>

namespace generalutilities::fire {
namespace {

/// Reads a file that is in memory.
template <class Reader>
class FromMemory : public Reader {
  public:
    std::string content;
    bool OpenFile() override {
        Reader::OpenFile();
        return this->Open(testing::FileOf(std::move(content)));
    }
};

using Cells = std::vector<std::u16string>;

/// The first two texts of all rows, one behind the other; "no header" if the file is refused.
template <class Reader = CRTFImport>
Cells Rows(std::string file) {
    FromMemory<Reader> import;
    import.content = std::move(file);
    if (!import.OpenFile() || !import.ReadHeader()) {
        return {u"no header"};
    }
    Cells cells;
    std::u16string id, source, target, comments;
    std::int32_t status = 0;
    while (import.NextRow(id, source, target, comments, status)) {
        cells.push_back(id);
        cells.push_back(source);
    }
    import.CloseFile();
    return cells;
}

const std::string Table =
    testing::Head +
    "\\pard ID\\cell Source\\cell Target\\cell\\row {\\trowd\\pard\\intbl 1}\\cell {\\f1 on\\'e9"
    "\\u8364 ?}\\cell\\pard {\\uc0\\u20013 two\\par}\\cell note\\cell 512\\cell\\row 2\\cell{\\b a}"
    "\\cell\\cell\\row}";

const std::string Document = testing::TwbDocument(
    u"x<ID 1> ¦m{0>¦rs\\u8364 ?\\'e9¦i<c:1>¦m<}87{>¦tt¦m<0}¦r{\\f1\\par}¦x<ID 2> ¦m{0><}0{><0}");

/// Whatever becomes of `whole`, an import of it answers.
template <class Reader>
void CutAndChange(const std::string& whole) {
    InstallFaultyVfs();
    const Project project(3, 5);
    DatabaseFailure failure;
    const auto database = OpenDatabase(project.Path(), OpenMode::ReadWrite, failure);
    ASSERT_TRUE(database);
    FromMemory<Reader> import;
    long imported = 0;
    long refused = 0;
    const auto run = [&](const std::string& where) {
        const HRESULT status = import.RunImport(*database, u"in memory", 1036);
        (status == S_OK ? imported : refused) += 1;
        ASSERT_TRUE(status == S_OK || status == static_cast<HRESULT>(everrNotEnoughFieldsPresent))
            << where << ": " << status;
    };
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        import.content = whole.substr(0, length);
        run("cut at " + std::to_string(length));
    }
    for (std::size_t place = 0; place < whole.size(); ++place) {
        const std::array<char, 4> some = {'{', '}', '\\', '\xFF'};
        const int values = LongRounds() ? 256 : static_cast<int>(some.size());
        for (int i = 0; i < values; ++i) {
            const char value =
                LongRounds() ? static_cast<char>(i) : some[static_cast<std::size_t>(i)];
            import.content = whole;
            import.content[place] = value;
            run("byte " + std::to_string(place) + " as " + std::to_string(value));
            ASSERT_FALSE(::testing::Test::HasFatalFailure());
        }
    }
    std::printf("%ld files: %ld imported, %ld refused\n", imported + refused, imported, refused);
    import.content = whole;
    EXPECT_EQ(import.RunImport(*database, u"in memory", 1036), S_OK);
}

TEST(FilesUnderFire, CutAnywhereOrWithAnyByteChanged) {
    CutAndChange<CRTFImport>(Table);
    EXPECT_EQ(Rows(Table), (Cells{u"1", u"on\u00E9\u20AC", u"2", u"a"}));
    CutAndChange<CTWBImport>(Document);
    EXPECT_EQ(Rows<CTWBImport>(Document), (Cells{u"1", u"s\u20AC\u00E9{1}", u"2", u""}));
}

/// A table of one row, with something in front of it, in its source cell, or in the font table.
std::string FileWith(const std::string& inFront, const std::string& inCell,
                     const std::string& fonts = {}) {
    std::string file = testing::Head;
    file.insert(file.find("{\\f0"), fonts);
    return file + inFront + "\\pard ID\\cell Source\\cell\\row 7\\cell " + inCell + "\\cell\\row}";
}

/// A bilingual document of one segment, and behind it what has no end mark.
std::string DocumentWith(const std::string& runs) {
    return testing::TwbDocument(u"x<ID 7> ¦m{0>¦tab¦m<}0{>¦tt¦m<0}¦x<ID 8> ¦m{0>¦ts¦r") + runs +
           "}";
}

const Cells Plain = {u"7", u"ab"};

/// A piece `count` times; each # in it is a number of its own.
std::string Repeat(const std::string& piece, std::size_t count) {
    std::string all;
    all.reserve(piece.size() * count);
    const std::size_t mark = piece.find('#');
    for (std::size_t i = 0; i < count; ++i) {
        all += mark == piece.npos ? piece : std::string(piece).replace(mark, 1, std::to_string(i));
    }
    return all;
}

double Seconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

TEST(FilesUnderFire, MoreOfEverythingThanAFileHas) {
    for (const auto& row : CaseTable("monsters.tsv")) {
        const std::string what = Bytes(row[0]), place = Bytes(row[3]);
        const std::string before = Bytes(row[4]), piece = Bytes(row[5]), then = Bytes(row[6]);
        const auto size = static_cast<std::size_t>(Number(row[LongRounds() ? 2 : 1]));
        double costOfHalf = 0;
        for (const std::size_t n : {size / 2, size}) {
            const std::string text = before + Repeat(piece, n) + Repeat(then, n) + Bytes(row[7]);
            const std::string file = place == "front"   ? FileWith(text, "ab")
                                     : place == "fonts" ? FileWith("", "a\\f100 b", text)
                                     : place == "cell"  ? FileWith("", text)
                                                        : DocumentWith(text);
            Cells expected = Plain;
            for (std::size_t i = 0; row[8] == u"rows" && i < n; ++i) {
                expected.insert(expected.end(), Plain.begin(), Plain.end());
            }
            if (row[8].size() == 1) {
                expected[1] = std::u16string(n, row[8][0]);
            }
            double cost = std::numeric_limits<double>::max();
            for (int run = 0; run < (LongRounds() ? 3 : 1); ++run) {
                std::string copy = file;
                const double start = Seconds();
                const Cells rows =
                    place == "document" ? Rows<CTWBImport>(std::move(copy)) : Rows(std::move(copy));
                cost = std::min(cost, Seconds() - start);
                EXPECT_TRUE(rows == expected) << what << " " << n;
            }
            if (n == size && LongRounds()) {
                std::printf("%zu %s: %.3f s, %.2f times the half\n", n, what.c_str(), cost,
                            cost / costOfHalf);
            }
            costOfHalf = cost;
        }
    }
}

TEST(FilesUnderFire, NumbersBeyond32Bits) {
    for (const char* number :
         {"2147483648", "4294967296", "4294967297", "-2147483649", "9223372036854775808",
          "18446744073709551617", "-99999999999999999999999999"}) {
        for (const char* word : {"\\li", "\\f", "\\fs", "\\cs", "\\cellx", "\\trleft", "\\bin"}) {
            const std::string use = std::string("a") + word + number + " b";
            EXPECT_EQ(Rows(FileWith("", use)), Plain) << use;
        }
        for (const char* word : {"\\u", "\\uc", "\\uc1\\u"}) {
            const std::string use = std::string("a") + word + number + " ?b";
            const Cells rows = Rows(FileWith("", use));
            ASSERT_EQ(rows.size(), 2u) << use;
            EXPECT_LE(rows[1].size(), 4u) << use;
        }
        const std::string font = std::string("{\\f") + number + "\\fcharset" + number + " X;}";
        EXPECT_EQ(Rows(FileWith("", "ab", font)), Plain) << font;
        const std::string status = "ab\\cell\\cell\\cell " + std::string(number);
        EXPECT_EQ(Rows(FileWith("", status)), Plain) << status;
    }
}

}  // namespace
}  // namespace generalutilities::fire
