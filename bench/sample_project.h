#pragma once

#include <generalutilities/database.h>
#include <generalutilities/extview/export_options.h>
#include <generalutilities/project/create.h>

#include "extview/html_export.h"
#include "extview/rtf_table_export.h"
#include "extview/twb_export.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Projects for benchmarks: as many rows as wanted, with texts of the usual lengths.
namespace generalutilities::bench {

inline constexpr std::int32_t SourceLanguage = 1033;
inline constexpr std::int32_t TargetLanguage = 1036;

/// Which rows of a project are equal to others.
enum class Duplicates {
    Some,   ///< every fifth row repeats an earlier one
    OneKey  ///< no source has a word, so that all rows have the empty source key; half are equal
};

class SampleRows final : public RowSource {
  public:
    SampleRows(std::size_t rowCount, Duplicates kind) : count(rowCount), duplicates(kind) {}

    const std::vector<std::int32_t>& Languages() const override { return languages; }
    std::uint64_t RowsAtMost() const override { return count; }

    bool Next(NewProjectRow& row) override {
        if (next == count) {
            return false;
        }
        row = {};
        row.translations.resize(1);
        // A row is a function of its seed, so that a repeated seed is a repeated row.
        const std::size_t half = count / 2;
        const bool repeats = duplicates == Duplicates::OneKey ? next >= half : next % 5 == 4;
        const std::size_t seed = !repeats                           ? next
                                 : duplicates == Duplicates::OneKey ? next - half
                                                                    : next / 7 * 5;
        Fill(row, static_cast<std::uint32_t>(seed));
        row.fileSpec = u"folder/document" + Digits(next / 1000) + u".docx";
        ++next;
        return true;
    }

  private:
    static std::u16string Digits(std::size_t number) {
        const std::string digits = std::to_string(number);
        return {digits.begin(), digits.end()};
    }

    void Fill(NewProjectRow& row, std::uint32_t seed) const {
        static const std::vector<std::u16string> words = {
            u"the",    u"setting", u"of",      u"printer", u"is",       u"changed", u"window",
            u"please", u"select",  u"another", u"file",    u"and",      u"close",   u"dialogue",
            u"before", u"you",     u"restart", u"system",  u"language", u"network"};
        static const std::vector<std::u16string> translated = {
            u"le",       u"réglage", u"de",    u"l’imprimante", u"est",    u"modifié", u"fenêtre",
            u"veuillez", u"choisir", u"autre", u"fichier",      u"et",     u"fermer",  u"dialogue",
            u"avant",    u"vous",    u"à",     u"système",      u"langue", u"réseau"};
        std::minstd_rand random(seed * 2654435761U + 1);
        random.discard(3);
        const std::size_t wordCount = 4 + random() % 20;
        const bool wordless = duplicates == Duplicates::OneKey;
        for (std::size_t i = 0; i < wordCount; ++i) {
            const std::size_t word = random() % words.size();
            const char16_t* const blank = i == 0 ? u"" : u" ";
            row.source += blank;
            row.source += wordless ? std::u16string(1 + word % 5, u"+*=%&"[word % 5]) : words[word];
            row.translations[0].target.append(blank).append(translated[word]);
        }
        row.source += wordless ? u"" : u".";
        if (random() % 4 == 0) {
            row.source += u" {" + Digits(random() % 9) + u"}";
        }
        row.translations[0].status = random() % 3 == 0 ? 1 : 2;
        row.translations[0].percentage = static_cast<std::int32_t>(random() % 100);
        if (random() % 8 == 0) {
            row.translations[0].comments = u"Please check the terminology of this one.";
        }
    }

    const std::size_t count;
    const Duplicates duplicates;
    const std::vector<std::int32_t> languages = {TargetLanguage};
    std::size_t next = 0;
};

/// A folder of its own under the one for temporary files, with a project in it.
class SampleProject {
  public:
    SampleProject(std::size_t rowCount, Duplicates duplicates) {
        std::string name = (std::filesystem::temp_directory_path() / "gu-bench-XXXXXX").string();
        folder = mkdtemp(name.data());
        std::vector<std::unique_ptr<RowSource>> sources;
        sources.push_back(std::make_unique<SampleRows>(rowCount, duplicates));
        CreateOptions options;
        options.sourceLanguage = SourceLanguage;
        CreateProject(Path("project").u16string(), sources, options);
        DatabaseFailure failure;
        database = OpenDatabase(Path("project").u16string(), OpenMode::ReadWrite, failure);
    }
    ~SampleProject() {
        database.reset();
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    SampleProject(const SampleProject&) = delete;
    SampleProject& operator=(const SampleProject&) = delete;

    std::filesystem::path Path(std::string_view name) const { return folder / name; }
    Database& Open() { return *database; }

  private:
    std::filesystem::path folder;
    std::unique_ptr<Database> database;
};

inline constexpr std::int32_t WholeProject = 0;

/// Writes all rows of the project beside it, as an RTF table or in another format.
template <class Format = CExternalViewRTFExport>
void ExportTable(SampleProject& project, std::int32_t options, std::string_view fileName) {
    Format writer;
    writer.RunExport(project.Open(), project.Path(fileName).u16string(), WholeProject,
                     TargetLanguage, options | ShowIdColumn, u"", {});
}

inline std::string FileContent(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace generalutilities::bench
