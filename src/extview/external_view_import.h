#pragma once

#include <generalutilities/database.h>
#include <generalutilities/status.h>

#include "extview/dao_recordset.h"
#include "extview/progress.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace generalutilities {

/// Brings a reviewed file back into the project: one row of the table `Reimporting` for each row of
/// the file whose identifier the project still knows, with the stored and the returned texts side
/// by side and what changed. `Pairs` stays as it is; the host decides what to take over.
///
/// A derived class reads one format of file, row by row.
class CExternalViewImport {
  public:
    CExternalViewImport() = default;
    virtual ~CExternalViewImport() = default;
    CExternalViewImport(const CExternalViewImport&) = delete;
    CExternalViewImport& operator=(const CExternalViewImport&) = delete;

    /// Opens the file that `SetSource` or `RunImport` named; false if that fails.
    virtual bool OpenFile() = 0;
    virtual void CloseFile() = 0;
    /// Reads up to the first row of data; false if the file lacks the fields of a row.
    virtual bool ReadHeader() = 0;
    /// The next row; false at the end of the file. A row without a comment or a status leaves these
    /// two arguments as they are. A status of -1 means that the file has none.
    virtual bool NextRow(std::u16string& id, std::u16string& source, std::u16string& target,
                         std::u16string& comments, std::int32_t& status) = 0;
    /// True when the system could not read the open file to its end, so that rows are missing.
    virtual bool FileIsDamaged() const = 0;

    /// Names the file and the language for callers that walk the rows themselves.
    void SetSource(std::u16string_view fileName, std::int32_t langId);
    /// Where percent values go; null for nowhere. The sink must outlive the import.
    void SetProgress(IExtViewProgress* sink) { progress = sink; }

    /// Replaces the table `Reimporting` by the rows of a file, as a whole: it happens in one
    /// transaction, so that whatever goes wrong leaves the earlier table.
    ///
    /// everrUnableToOpenFile for a file that cannot be opened, everrNotEnoughFieldsPresent for one
    /// that is not of the expected form. E_FAIL, with the database's failure telling why, if the
    /// table cannot be made or the transaction not be committed; also E_FAIL if the file cannot be
    /// read to its end. Rows that cannot be found or written are left out without a word.
    HRESULT RunImport(Database& database, std::u16string_view fileName, std::int32_t langId);

  protected:
    /// Reports how far into the file the reader is, if the percent value has changed.
    void ReportPosition(std::uint32_t position, std::uint32_t fileSize, std::int32_t& lastPercent);

    std::u16string sourceFile;
    std::int32_t targetLangId = 0;
    IExtViewProgress* progress = nullptr;  ///< not owned

  private:
    /// The stored texts of a row. The views live until `pairs` moves.
    struct StoredRow {
        std::u16string_view source;
        std::u16string_view target;
        std::u16string_view comments;
        std::int32_t status = 0;
    };

    bool CreateTable(Database& database, DaoRecordset& reimporting);
    void OpenPairs(Database& database);
    bool FindRow(std::u16string_view id, StoredRow& row);
    void CopyRows(DaoRecordset& reimporting);

    DaoRecordset pairs;  ///< the table `Pairs`, during an import
};

}  // namespace generalutilities
