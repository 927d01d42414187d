#include "extview/external_view_import.h"

#include <generalutilities/extview/export_options.h>
#include <generalutilities/extview/segment_text.h>

#include "extview/dao_table_builder.h"
#include "extview/transaction.h"
#include "text/decimal.h"

namespace generalutilities {

namespace {

constexpr std::u16string_view TableName = u"Reimporting";

/// The fields of `Reimporting`, by their bound positions.
enum Field : int {
    Id = 1,
    ExistingSource,
    Source,
    SourceHasChanged,
    ExistingTarget,
    Target,
    TargetHasChanged,
    Comments,
    Accept,
    Status,
};
constexpr std::u16string_view FieldNames[] = {
    u"ID",     u"ExistingSource",   u"Source",   u"SourceHasChanged", u"ExistingTarget",
    u"Target", u"TargetHasChanged", u"Comments", u"Accept",           u"Status"};

/// The bound positions of `Pairs`.
enum PairsField : int { PairsId = 1, PairsSource, PairsTarget, PairsStatus, PairsComments };

/// Runs an action when the scope ends, however it ends.
template <class Action>
class AtEnd {
  public:
    explicit AtEnd(Action chosen) : action(chosen) {}
    ~AtEnd() { action(); }
    AtEnd(const AtEnd&) = delete;
    AtEnd& operator=(const AtEnd&) = delete;

  private:
    Action action;
};

/// True if a text of the file is another than what the export made of the stored one.
bool Differs(std::u16string_view fromFile, std::u16string_view stored) {
    if (stored.find_first_of(u"\u0006\u0007\u0008") == std::u16string_view::npos) {
        return fromFile != stored;
    }
    return fromFile != StripCodeMarkers(stored);
}

}  // namespace

void CExternalViewImport::SetSource(std::u16string_view fileName, std::int32_t langId) {
    sourceFile = fileName;
    targetLangId = langId;
}

HRESULT CExternalViewImport::RunImport(Database& database, std::u16string_view fileName,
                                       std::int32_t langId) {
    SetSource(fileName, langId);
    if (!OpenFile()) {
        return everrUnableToOpenFile;
    }
    {
        const AtEnd closeFile([this] { CloseFile(); });
        if (!ReadHeader()) {
            return FileIsDamaged() ? E_FAIL : static_cast<HRESULT>(everrNotEnoughFieldsPresent);
        }
        Transaction transaction(database);
        if (!transaction.IsOpen()) {
            return E_FAIL;
        }
        {
            DaoRecordset reimporting;
            const AtEnd closePairs([this] { pairs.Close(); });
            if (!CreateTable(database, reimporting)) {
                return E_FAIL;
            }
            OpenPairs(database);
            CopyRows(reimporting);
        }
        if (FileIsDamaged() || !transaction.Commit()) {
            return E_FAIL;
        }
    }
    if (progress != nullptr) {
        progress->ReportProgress(100, targetLangId);
    }
    return S_OK;
}

/// Makes `Reimporting` anew and opens it.
bool CExternalViewImport::CreateTable(Database& database, DaoRecordset& reimporting) {
    constexpr std::u16string_view EmptyText = u"\"\"";
    DaoTableBuilder builder;
    builder.Attach(database);
    if (!builder.Create(TableName, true)) {
        return false;
    }
    builder.AddTextField(u"ID", EmptyText);
    builder.AddMemoField(u"ExistingSource", EmptyText, true, true);
    builder.AddMemoField(u"Source", EmptyText, true, true);
    builder.AddBooleanField(u"SourceHasChanged", false);
    builder.AddMemoField(u"ExistingTarget", EmptyText, true, true);
    builder.AddMemoField(u"Target", EmptyText, true, true);
    builder.AddBooleanField(u"TargetHasChanged", false);
    builder.AddMemoField(u"Comments", EmptyText, true, true);
    builder.AddBooleanField(u"Accept", true);
    builder.AddLongField(u"Status", 0);
    if (!builder.Commit() || !reimporting.Open(database, TableName, false)) {
        return false;
    }
    int position = Id;
    for (const std::u16string_view name : FieldNames) {
        reimporting.BindField(position++, name);
    }
    return true;
}

void CExternalViewImport::OpenPairs(Database& database) {
    const std::u16string language = Decimal(targetLangId);
    pairs.Open(database, u"Pairs", false);
    pairs.BindField(PairsId, u"ID");
    pairs.BindField(PairsSource, u"Source");
    pairs.BindField(PairsTarget, u"Target_" + language);
    pairs.BindField(PairsStatus, u"Status_" + language);
    pairs.BindField(PairsComments, u"Comments_" + language);
    pairs.SetIndex(u"iID");
}

bool CExternalViewImport::FindRow(std::u16string_view id, StoredRow& row) {
    if (!pairs.SeekEqual(id)) {
        return false;
    }
    row.source = pairs.GetString(PairsSource).value_or(std::u16string_view());
    row.target = pairs.GetString(PairsTarget).value_or(std::u16string_view());
    row.comments = pairs.GetString(PairsComments).value_or(std::u16string_view());
    row.status = pairs.GetLong(PairsStatus);
    return true;
}

void CExternalViewImport::CopyRows(DaoRecordset& reimporting) {
    std::u16string id, source, target;
    std::u16string comments;   // these two carry over to rows of the file
    std::int32_t status = -1;  // that have no such cells
    while (NextRow(id, source, target, comments, status)) {
        StoredRow stored;
        if (!FindRow(id, stored)) {
            continue;
        }
        reimporting.AddNew();
        reimporting.SetString(Id, id);
        reimporting.SetString(ExistingSource, stored.source);
        reimporting.SetString(Source, source);
        reimporting.SetBool(SourceHasChanged, Differs(source, stored.source));
        reimporting.SetString(ExistingTarget, stored.target);
        reimporting.SetString(Target, target);
        reimporting.SetBool(TargetHasChanged, Differs(target, stored.target));
        reimporting.SetString(Comments, comments.empty() ? stored.comments : comments);
        if ((stored.status & StatusLocked) != 0) {
            reimporting.SetBool(Accept, false);
        }
        reimporting.SetLong(Status, status == -1 ? stored.status : status);
        reimporting.Update();
    }
}

void CExternalViewImport::ReportPosition(std::uint32_t position, std::uint32_t fileSize,
                                         std::int32_t& lastPercent) {
    if (progress == nullptr || fileSize == 0) {
        return;
    }
    const auto percent =
        static_cast<std::int32_t>(std::uint64_t{position} * 100 / std::uint64_t{fileSize});
    if (percent != lastPercent) {
        lastPercent = percent;
        progress->ReportProgress(percent, targetLangId);
    }
}

}  // namespace generalutilities
