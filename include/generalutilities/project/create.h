#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// Making a project file from rows, wherever they come from.
namespace generalutilities {

/// A row's state in one target language.
struct Translation {
    std::u16string target;  ///< segment text; empty: not translated
    std::u16string comments;
    std::int32_t status = 0;
    std::int32_t percentage = 0;
};

/// One row of a new project.
struct NewProjectRow {
    std::u16string id;      ///< empty: the row gets a number
    std::u16string source;  ///< segment text
    /// The file that the segment comes from, as a path or any other name; ignored for the lexicon.
    std::u16string fileSpec;
    bool isLexicon = false;
    std::int32_t frequency = 0;
    std::vector<Translation> translations;  ///< one for each of `RowSource::Languages`, in order
    std::string place;                      ///< where the row stands, for messages: "a.csv, line 7"
};

/// Gives the rows of a new project one by one, in document order.
class RowSource {
  public:
    virtual ~RowSource() = default;
    /// The identifiers of the target languages.
    virtual const std::vector<std::int32_t>& Languages() const = 0;
    /// A number of rows that is not exceeded; it decides the length of the numbers.
    virtual std::uint64_t RowsAtMost() const = 0;
    /// Fills in the next row; false behind the last one. Throws `Error` for a row that is wrong.
    virtual bool Next(NewProjectRow& row) = 0;
    /// What the source left out and why, complete once `Next` has given false.
    virtual std::vector<std::string> Notes() const { return {}; }
};

/// What a new project is like.
struct CreateOptions {
    std::int32_t sourceLanguage = 1033;
    /// Target languages besides those of the sources; their columns are empty.
    std::vector<std::int32_t> moreLanguages;
    bool replaceExisting = false;
    /// Called now and then with 0 to 100.
    std::function<void(int percent)> progress;
};

/// What a new project holds.
struct CreateResult {
    std::uint64_t rows = 0;
    std::uint64_t lexiconRows = 0;
    std::vector<std::int32_t> languages;
    std::vector<std::u16string> files;  ///< the files' names; the first has the identifier 1
    std::vector<std::string> notes;     ///< UTF-8, for people
};

/// Creates the project file at `path` with the rows of all sources, one source after the other. The
/// languages of the project are those of all sources, and `moreLanguages`.
///
/// Identifiers are the rows' own, or numbers padded with zeros so that the order of the texts is
/// the order of the rows; the two do not mix, and no identifier may stand twice. `Source2Index` is
/// filled by `MakeSourceKey`.
///
/// The project is written beside its final name and renamed when it is complete; on a failure
/// nothing is left and a file of that name stays as it was. Throws `Error`: for rows that are
/// wrong, for a file that exists already (unless `replaceExisting`), for a folder that cannot be
/// written.
CreateResult CreateProject(std::u16string_view path,
                           const std::vector<std::unique_ptr<RowSource>>& sources,
                           const CreateOptions& options);

}  // namespace generalutilities
