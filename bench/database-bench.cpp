// The project database and what the external view does with it, beside bare loops over SQLite.
//
// A bare loop is the shortest program that does one job through SQLite's own functions: a prepared
// statement, its columns as UTF-16, and nothing kept, checked or restored. Its connection has
// SQLite's defaults.

#include "extview/duplicate_marking.h"
#include "extview/rtf/rtf_import.h"
#include "ratios.h"
#include "sample_project.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <malloc.h>
#include <map>
#include <sqlite3.h>

namespace generalutilities::bench {
namespace {

const std::size_t RowCount = [] {
    const char* rows = std::getenv("GENERALUTILITIES_BENCH_ROWS");
    return rows != nullptr ? static_cast<std::size_t>(std::atoll(rows)) : 1000000;
}();

SampleProject& Project(std::size_t rows, Duplicates duplicates) {
    static std::map<std::pair<std::size_t, Duplicates>, std::unique_ptr<SampleProject>> projects;
    auto& project = projects[{rows, duplicates}];
    if (!project) {
        project = std::make_unique<SampleProject>(rows, duplicates);
    }
    return *project;
}

/// A connection of its own to a project's file.
class BareDatabase {
  public:
    explicit BareDatabase(const SampleProject& project) {
        sqlite3_open(project.Path("project").c_str(), &handle);
    }
    ~BareDatabase() { sqlite3_close(handle); }
    BareDatabase(const BareDatabase&) = delete;
    BareDatabase& operator=(const BareDatabase&) = delete;

    void Run(const char* sql) const { sqlite3_exec(handle, sql, nullptr, nullptr, nullptr); }
    sqlite3_stmt* Prepare(std::string_view sql) const {
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(handle, sql.data(), static_cast<int>(sql.size()), &statement, nullptr);
        return statement;
    }

  private:
    sqlite3* handle = nullptr;
};

std::u16string_view ColumnText(sqlite3_stmt* statement, int column) {
    const void* units = sqlite3_column_text16(statement, column);
    return {static_cast<const char16_t*>(units),
            static_cast<std::size_t>(sqlite3_column_bytes16(statement, column)) / 2};
}

std::size_t ReadAll(sqlite3_stmt* statement) {
    std::size_t read = 0;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        for (int column = 0; column < 4; ++column) {
            read += ColumnText(statement, column).size();
        }
        for (int column = 4; column < 8; ++column) {
            read += static_cast<std::size_t>(sqlite3_column_int(statement, column));
        }
    }
    sqlite3_reset(statement);
    return read;
}

std::string BareQuery(const char* order) {
    return std::string(
               "SELECT ID, Source, Target_1036, Comments_1036, Status_1036, Done, FileID, "
               "Percentage_1036 FROM Pairs WHERE FileID > -1 AND Done = 0 AND Selected = -1 "
               "ORDER BY ") +
           order;
}

RowQueries QueriesOf(std::int32_t options) {
    return BuildQueries(DecodeOptions(options), WholeProject, TargetLanguage, u"");
}

std::size_t ReadAll(Database& database, std::u16string_view query) {
    const auto rows = database.OpenRecordset(query, RecordsetType::Dynaset);
    std::vector<int> fields;
    for (const char16_t* name :
         {u"ID", u"Source", u"Target", u"Comments", u"Status", u"Done", u"FileID", u"Percentage"}) {
        fields.push_back(rows->FieldIndex(name).value());
    }
    std::size_t read = 0;
    for (; !rows->Eof(); rows->MoveNext()) {
        for (int field = 0; field < 4; ++field) {
            const FieldValue value = rows->GetValue(fields[field]);
            const auto* text = std::get_if<std::u16string_view>(&value);
            read += text != nullptr ? text->size() : 0;
        }
        for (int field = 4; field < 8; ++field) {
            const FieldValue value = rows->GetValue(fields[field]);
            const auto* number = std::get_if<std::int32_t>(&value);
            read += number != nullptr ? static_cast<std::size_t>(*number) : 0;
        }
    }
    return read;
}

/// One job a repetition: the jobs take seconds.
void Register(
    const std::string& name, std::function<std::size_t()> job,
    std::function<void()> prepare = [] {}) {
    benchmark::RegisterBenchmark(
        name.c_str(),
        [job, prepare](benchmark::State& state) {
            for ([[maybe_unused]] auto _ : state) {
                state.PauseTiming();
                prepare();
                state.ResumeTiming();
                benchmark::DoNotOptimize(job());
            }
            state.SetItemsProcessed(static_cast<std::int64_t>(RowCount * state.iterations()));
        })
        ->Unit(benchmark::kMillisecond)
        ->Iterations(1)
        ->Repetitions(5);
}

/// What the export puts around the values of a row, taken from an export of one row.
struct FixedPieces {
    std::string head;
    std::string pieces[5];  ///< before each of the four values, and behind the last one

    FixedPieces() {
        SampleProject project(1, Duplicates::Some);
        project.Open().Execute(
            u"UPDATE Pairs SET ID = 'THEID', Source = 'THESOURCE', Target_1036 = 'THETARGET', "
            u"Comments_1036 = 'THECOMMENT'");
        ExportTable(project, 0, "one.rtf");
        const std::string text = FileContent(project.Path("one.rtf"));
        std::size_t at = text.find("\\row}\n") + 6;
        head = text.substr(0, at);
        int piece = 0;
        for (const std::string value : {"THEID", "THESOURCE", "THETARGET", "THECOMMENT"}) {
            const std::size_t end = text.find(value, at);
            pieces[piece++] = text.substr(at, end - at);
            at = end + value.size();
        }
        pieces[4] = text.substr(at, text.size() - at - 2);  // without the foot "}\n"
    }
};

void AppendEscapedUnit(std::string& row, char16_t unit) {
    if (unit == u'{' || unit == u'}' || unit == u'\\') {
        row += '\\';
        row += static_cast<char>(unit);
    } else if (unit < 0x80) {
        row += static_cast<char>(unit);
    } else {
        row += "\\uc0\\u" + std::to_string(unit) + " ";
    }
}

/// The whole way out as a bare loop: the bytes are the same as the export's.
std::size_t BareExport(const BareDatabase& bare, const std::filesystem::path& path) {
    static const FixedPieces fixed;
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    std::fwrite(fixed.head.data(), 1, fixed.head.size(), file);
    sqlite3_stmt* const statement = bare.Prepare(BareQuery("ID"));
    std::string row;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        row.clear();
        for (int column = 0; column < 4; ++column) {
            row += fixed.pieces[column];
            for (const char16_t unit : ColumnText(statement, column)) {
                AppendEscapedUnit(row, unit);
            }
        }
        row += fixed.pieces[4];
        std::fwrite(row.data(), 1, row.size(), file);
    }
    sqlite3_finalize(statement);
    std::fwrite("}\n", 1, 2, file);
    std::fclose(file);
    return 0;
}

std::vector<Goal> RegisterWalks(SampleProject& project, const BareDatabase& bare) {
    std::vector<Goal> goals;
    for (const auto& [words, options, order] :
         {std::tuple("read the rows in the order of their identifiers", std::int32_t{0}, "ID"),
          std::tuple("read the rows in the order of their source keys", std::int32_t{SortBySource},
                     "Source2Index")}) {
        const std::string work = words;
        const std::u16string query = QueriesOf(options).mainQuery;
        Register(work + "/ours", [&project, query] { return ReadAll(project.Open(), query); });
        Register(work + "/limit", [&bare, sql = BareQuery(order)] {
            sqlite3_stmt* const statement = bare.Prepare(sql);
            const std::size_t read = ReadAll(statement);
            sqlite3_finalize(statement);
            return read;
        });
        goals.push_back({.row = "9a", .work = work});
    }
    return goals;
}

std::vector<Goal> RegisterExport(SampleProject& project, const BareDatabase& bare) {
    const std::string work = "read the rows and export them";
    ExportTable(project, 0, "ours.rtf");
    BareExport(bare, project.Path("bare.rtf"));
    if (FileContent(project.Path("ours.rtf")) != FileContent(project.Path("bare.rtf"))) {
        std::fprintf(stderr, "the bare loop writes another file\n");
        std::exit(1);
    }
    Register(work + "/ours", [&project] {
        ExportTable(project, 0, "ours.rtf");
        return 0;
    });
    Register(work + "/limit",
             [&project, &bare] { return BareExport(bare, project.Path("bare.rtf")); });
    return {{.row = "9a", .work = work, .limit = 0.8}};
}

/// The other formats beside the RTF table.
std::vector<Goal> RegisterFormats(SampleProject& project) {
    std::vector<Goal> goals;
    const auto add = [&](const std::string& work,
                         void (*write)(SampleProject&, std::int32_t, std::string_view)) {
        Register(work + "/ours", [&project, write] {
            write(project, 0, "other");
            return 0;
        });
        Register(work + "/peer", [&project] {
            ExportTable(project, 0, "table.rtf");
            return 0;
        });
        goals.push_back({.row = "9a", .work = work, .peer = 1});
    };
    add("export a page instead of an RTF table", ExportTable<CHTMLExport>);
    add("export a bilingual document instead of an RTF table", ExportTable<CExternalViewTWBExport>);
    return goals;
}

/// Identifiers of random rows; a tenth of them do not exist.
const std::vector<std::u16string>& SomeIds() {
    static const std::vector<std::u16string> ids = [] {
        std::vector<std::u16string> some;
        std::minstd_rand random(7);
        while (some.size() < RowCount / 4) {
            std::string digits = std::to_string(1 + random() % (RowCount + RowCount / 10));
            digits.insert(0,
                          std::max<std::size_t>(std::to_string(RowCount).size(), 6) -
                              std::min(std::to_string(RowCount).size(), digits.size()),
                          '0');
            some.emplace_back(digits.begin(), digits.end());
        }
        return some;
    }();
    return ids;
}

std::vector<Goal> RegisterSeek(SampleProject& project, const BareDatabase& bare) {
    const std::string work = "seek rows by identifier";
    Register(work + "/ours", [&project] {
        const auto pairs = project.Open().OpenRecordset(u"Pairs", RecordsetType::Table);
        const int fields[] = {*pairs->FieldIndex(u"ID"), *pairs->FieldIndex(u"Source"),
                              *pairs->FieldIndex(u"Target_1036"),
                              *pairs->FieldIndex(u"Status_1036"),
                              *pairs->FieldIndex(u"Comments_1036")};
        pairs->SetIndex(u"iID");
        std::size_t read = 0;
        for (const std::u16string& id : SomeIds()) {
            if (pairs->Seek(id) && !pairs->NoMatch()) {
                for (const int field : fields) {
                    const FieldValue value = pairs->GetValue(field);
                    const auto* text = std::get_if<std::u16string_view>(&value);
                    read += text != nullptr ? text->size() : 1;
                }
            }
        }
        return read;
    });
    Register(work + "/limit", [&bare] {
        sqlite3_stmt* const statement = bare.Prepare(
            "SELECT ID, Source, Target_1036, Comments_1036, Status_1036 FROM Pairs WHERE ID = ?1");
        std::size_t read = 0;
        for (const std::u16string& id : SomeIds()) {
            sqlite3_bind_text16(statement, 1, id.data(), static_cast<int>(id.size() * 2),
                                SQLITE_STATIC);
            if (sqlite3_step(statement) == SQLITE_ROW) {
                for (int column = 0; column < 4; ++column) {
                    read += ColumnText(statement, column).size();
                }
                read += static_cast<std::size_t>(sqlite3_column_int(statement, 4));
            }
            sqlite3_reset(statement);
        }
        sqlite3_finalize(statement);
        return read;
    });
    return {{.row = "9b", .work = work, .limit = 0.9}};
}

constexpr char NewTable[] =
    "DROP TABLE IF EXISTS Filled; CREATE TABLE Filled (ID TEXT, ExistingSource LONGTEXT, Source "
    "LONGTEXT, SourceHasChanged YESNO DEFAULT 0, Status INTEGER)";

std::vector<Goal> RegisterInsert(SampleProject& project, const BareDatabase& bare) {
    const std::string work = "insert rows in one transaction";
    static const std::u16string text = u"Veuillez fermer la fenêtre avant de choisir la langue.";
    const auto anew = [&bare] { bare.Run(NewTable); };
    Register(
        work + "/ours",
        [&project] {
            Database& database = project.Open();
            database.BeginTrans();
            const auto table = database.OpenRecordset(u"Filled", RecordsetType::Table);
            const int fields[] = {*table->FieldIndex(u"ID"), *table->FieldIndex(u"ExistingSource"),
                                  *table->FieldIndex(u"Source"),
                                  *table->FieldIndex(u"SourceHasChanged"),
                                  *table->FieldIndex(u"Status")};
            for (std::size_t i = 0; i < RowCount; ++i) {
                table->AddNew();
                table->PutValue(fields[0], SomeIds()[i % SomeIds().size()]);
                table->PutValue(fields[1], text);
                table->PutValue(fields[2], text);
                table->PutValue(fields[3], true);
                table->PutValue(fields[4], static_cast<std::int32_t>(i));
                table->Update();
            }
            database.CommitTrans();
            return RowCount;
        },
        anew);
    Register(
        work + "/limit",
        [&bare] {
            bare.Run("BEGIN IMMEDIATE");
            sqlite3_stmt* const statement =
                bare.Prepare("INSERT INTO Filled VALUES (?1, ?2, ?3, ?4, ?5)");
            for (std::size_t i = 0; i < RowCount; ++i) {
                const std::u16string& id = SomeIds()[i % SomeIds().size()];
                sqlite3_bind_text16(statement, 1, id.data(), static_cast<int>(id.size() * 2),
                                    SQLITE_STATIC);
                for (const int parameter : {2, 3}) {
                    sqlite3_bind_text16(statement, parameter, text.data(),
                                        static_cast<int>(text.size() * 2), SQLITE_STATIC);
                }
                sqlite3_bind_int(statement, 4, -1);
                sqlite3_bind_int(statement, 5, static_cast<int>(i));
                sqlite3_step(statement);
                sqlite3_reset(statement);
            }
            sqlite3_finalize(statement);
            bare.Run("COMMIT");
            return RowCount;
        },
        anew);
    return {{.row = "9c", .work = work, .limit = 0.8}};
}

std::vector<Goal> RegisterDuplicates() {
    std::vector<Goal> goals;
    for (const auto& [words, kind] :
         {std::pair("mark duplicates, a fifth of the rows", Duplicates::Some),
          std::pair("mark duplicates, all rows with one source key", Duplicates::OneKey)}) {
        const std::string work = words;
        SampleProject& project = Project(RowCount, kind);
        const auto unmark = [&project] { project.Open().Execute(u"UPDATE Pairs SET Done = 0"); };
        Register(
            work + "/ours",
            [&project] {
                const RowQueries queries = QueriesOf(0);
                return std::size_t{MarkDuplicates(project.Open(), {.queries = queries,
                                                                   .uniquePairsOnly = true,
                                                                   .sourceLangId = SourceLanguage,
                                                                   .targetLangId = TargetLanguage,
                                                                   .fileId = WholeProject})};
            },
            unmark);
        Register(
            work + "/limit",
            [&project] {
                const BareDatabase bare(project);
                sqlite3_stmt* const statement = bare.Prepare(BareQuery("ID"));
                const std::size_t read = ReadAll(statement);
                sqlite3_finalize(statement);
                return read;
            },
            unmark);
        goals.push_back({.row = "9d", .work = work, .limit = 1.0 / 3});
    }
    return goals;
}

/// The memory that a job needs beyond what is in use before it, as a counter in MiB.
class PeakMemory {
  public:
    PeakMemory() {
        malloc_trim(0);  // what earlier jobs have left in the heap would serve this one
        std::ofstream("/proc/self/clear_refs") << 5;  // the peak starts anew
        before = Field("VmRSS:");
    }
    double MiB() const { return (Field("VmHWM:") - before) / 1024; }

  private:
    static double Field(const std::string& name) {
        std::ifstream status("/proc/self/status");
        for (std::string word; status >> word;) {
            if (word == name) {
                double kilobytes = 0;
                status >> kilobytes;
                return kilobytes;
            }
        }
        return 0;
    }

    double before;
};

void RegisterMemory() {
    const auto add = [](const std::string& name, std::size_t rows,
                        std::function<void(SampleProject&)> job) {
        benchmark::RegisterBenchmark(
            ("memory, " + name + ", " + std::to_string(rows) + " rows").c_str(),
            [job, rows](benchmark::State& state) {
                SampleProject& project = Project(rows, Duplicates::Some);
                ExportTable(project, 0, "ours.rtf");
                for ([[maybe_unused]] auto _ : state) {
                    const PeakMemory peak;
                    job(project);
                    state.counters["MiB"] = peak.MiB();
                }
            })
            ->Unit(benchmark::kMillisecond)
            ->Iterations(1)
            ->Repetitions(3);
    };
    for (const std::size_t rows : {RowCount / 10, RowCount}) {
        add("export", rows, [](SampleProject& project) { ExportTable(project, 0, "ours.rtf"); });
        add("export of unique pairs", rows,
            [](SampleProject& project) { ExportTable(project, UniquePairsOnly, "unique.rtf"); });
        add("import", rows, [](SampleProject& project) {
            CRTFImport reader;
            reader.RunImport(project.Open(), project.Path("ours.rtf").u16string(), TargetLanguage);
        });
    }
}

int Main(int argc, char** argv) {
    SampleProject& project = Project(RowCount, Duplicates::Some);
    const BareDatabase bare(project);
    std::vector<Goal> goals;
    for (const auto& some :
         {RegisterWalks(project, bare), RegisterExport(project, bare), RegisterFormats(project),
          RegisterSeek(project, bare), RegisterInsert(project, bare), RegisterDuplicates()}) {
        goals.insert(goals.end(), some.begin(), some.end());
    }
    RegisterMemory();
    return Run(argc, argv, goals);
}

}  // namespace
}  // namespace generalutilities::bench

int main(int argc, char** argv) {
    return generalutilities::bench::Main(argc, argv);
}
