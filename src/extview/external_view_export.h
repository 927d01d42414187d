#pragma once

#include <generalutilities/database.h>
#include <generalutilities/status.h>
#include <generalutilities/text_file.h>

#include "extview/progress.h"
#include "extview/row_selection.h"

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace generalutilities {

/// The colours of the rows by status, as 0x00RRGGBB.
struct ExportColors {
    std::int32_t guaranteed = 0;
    std::int32_t exact = 0;
    std::int32_t fuzzy = 0;
    std::int32_t assembled = 0;
    std::int32_t propagated = 0;
    std::int32_t autoPropagated = 0;
    std::int32_t locked = 0;
    std::int32_t pending = 0;
    std::int32_t machineTranslated = 0;
};

/// Makes the factory of the output file, anew for every file; may give null.
using TextFileFactoryCreator = std::function<std::unique_ptr<TextFileFactory>()>;

/// Writes the selected rows of a project to a file for a reviewer.
///
/// This class selects and walks the rows, cleans their texts and numbers the colours. A format
/// derives from it and turns the prepared values into bytes; it needs nothing of the database. One
/// object may run any number of exports, one after the other.
class CExternalViewExport {
  public:
    explicit CExternalViewExport(TextFileFactoryCreator createFactory = CreateTextFileFactory);
    virtual ~CExternalViewExport() = default;
    CExternalViewExport(const CExternalViewExport&) = delete;
    CExternalViewExport& operator=(const CExternalViewExport&) = delete;

    /// Runs one export. `lexiconOrderByClause` orders an export of the lexicon and is SQL text.
    /// S_OK; everrUnableToOpenFile when the destination cannot be written; everrInvalidQuery when
    /// the project gives no rows, in which case the destination holds the head alone. Whether the
    /// rows reach the disk is the stream's to say: results of writing are not looked at here.
    HRESULT RunExport(Database& project, std::u16string_view destinationPath, std::int32_t fileId,
                      std::int32_t targetLanguage, std::int32_t exportOptions,
                      std::u16string_view lexiconOrderByClause, const ExportColors& colors);

    // Set by the owner; they stay from export to export.
    std::u16string sourceFont = u"Tahoma";
    std::u16string targetFont = u"Tahoma";
    IExtViewProgress* progress = nullptr;  ///< not owned, may be null

  protected:
    /// Walks the rows and calls `WriteRow` for each that is not marked as a duplicate.
    virtual void ExportRows(std::unique_ptr<Recordset> recordset);

    /// Opens `destination` by `OpenFile`; false stops the export.
    virtual bool OpenOutput() = 0;
    virtual void CloseOutput();
    /// Takes the next colour: the numbers count from 1 in the order of the calls.
    virtual void AddColor(std::int32_t rgb) = 0;
    /// Computes what head and rows need; options, languages and colours are known by then.
    virtual void PrepareLayout() = 0;
    virtual void WriteHeader() = 0;
    virtual void WriteFooter() = 0;
    virtual void WriteRow(std::u16string_view id, std::u16string_view source,
                          std::u16string_view target, std::u16string_view comments,
                          std::int32_t status, std::u16string_view fileName,
                          std::int32_t percentage) = 0;

    /// Opens `destination` as `output`; false if that fails.
    bool OpenFile(TextFileFormat format);

    /// The key of `statusColors` that stands for the border colour; it is no bit of a status.
    static constexpr std::int32_t BorderColorKey = 0x100000;

    /// The bit of a status word that decides the colour of its row; nothing if it has none of them.
    static std::int32_t StatusKeyOfRow(std::int32_t status);
    /// The colour number of a row by its status word, 0 for a status without a colour.
    std::int32_t ColorNumberOfRow(std::int32_t status) const;
    /// Whether a row is coloured at all.
    bool IsRowColored(std::int32_t status) const;

    std::u16string destination;
    ExportFlags flags;
    std::map<std::int32_t, std::int32_t> statusColors;  ///< status key to colour number
    std::int32_t sourceLangId = 0;
    std::int32_t targetLangId = 0;
    bool sourceIsRightToLeft = false;
    bool targetIsRightToLeft = false;
    std::unique_ptr<TextFileStream> output;

  private:
    void BuildStatusColors(const ExportColors& colors);
    /// What the file name column says about a file, asked of the project once per export and file.
    std::u16string_view FileColumnText(std::int32_t fileId);

    const TextFileFactoryCreator createTextFileFactory;
    RowQueries queries;
    std::map<std::int32_t, std::u16string> fileNames;
    Database* database = nullptr;  ///< not owned; set during an export only
};

}  // namespace generalutilities
