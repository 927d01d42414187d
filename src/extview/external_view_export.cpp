#include "extview/external_view_export.h"

#include <generalutilities/extview/export_options.h>
#include <generalutilities/extview/segment_text.h>

#include "extview/dao_recordset.h"
#include "extview/duplicate_marking.h"

#include <algorithm>
#include <utility>

namespace generalutilities {

namespace {

constexpr std::int32_t White = 0xFFFFFF;
constexpr std::int32_t Black = 0;

// The walk reports 0 to 100 percent, or what the duplicate pass has left of them.
constexpr std::int64_t PercentAfterDuplicates = 60;

enum Position {
    IdPosition = 1,
    SourcePosition,
    TargetPosition,
    CommentsPosition,
    StatusPosition,
    DonePosition,
    FileIdPosition,
    PercentagePosition,
};

// Percent values of the walk: only changes go to the sink.
class WalkProgress {
  public:
    WalkProgress(IExtViewProgress* sink, std::int32_t langId, std::int64_t rowCount,
                 bool afterDuplicates)
        : progress(sink),
          targetLangId(langId),
          total(std::max<std::int64_t>(rowCount, 1)),
          start(afterDuplicates ? PercentAfterDuplicates : 0) {}

    void CountRow() {
        if (progress == nullptr) {
            return;
        }
        counter = std::min(counter + 1, total);
        const std::int64_t step = counter * (100 - start) / total;
        if (step != lastStep) {
            lastStep = step;
            progress->ReportProgress(static_cast<std::int32_t>(start + step), targetLangId);
        }
    }

  private:
    IExtViewProgress* progress;
    std::int32_t targetLangId;
    std::int64_t total;
    std::int64_t start;
    std::int64_t counter = 0;
    std::int64_t lastStep = -1;
};

std::u16string ExportedText(std::u16string_view text, bool removeCodes) {
    std::u16string shown = StripCodeMarkers(text);
    return removeCodes ? StripBraces(shown) : shown;
}

}  // namespace

CExternalViewExport::CExternalViewExport(TextFileFactoryCreator createFactory)
    : createTextFileFactory(std::move(createFactory)) {}

HRESULT CExternalViewExport::RunExport(Database& project, std::u16string_view destinationPath,
                                       std::int32_t fileId, std::int32_t targetLanguage,
                                       std::int32_t exportOptions,
                                       std::u16string_view lexiconOrderByClause,
                                       const ExportColors& colors) {
    database = &project;
    const auto forgetDatabase = [](CExternalViewExport* self) { self->database = nullptr; };
    const std::unique_ptr<CExternalViewExport, decltype(forgetDatabase)> guard(this,
                                                                               forgetDatabase);
    fileNames.clear();
    flags = DecodeOptions(exportOptions);
    destination = destinationPath;
    targetLangId = targetLanguage;
    sourceLangId = ReadSourceLanguage(project);
    sourceIsRightToLeft = IsRightToLeft(sourceLangId);
    targetIsRightToLeft = IsRightToLeft(targetLangId);

    if (!OpenOutput()) {
        return everrUnableToOpenFile;
    }
    BuildStatusColors(colors);
    PrepareLayout();
    WriteHeader();

    queries = BuildQueries(flags, fileId, targetLangId, lexiconOrderByClause);
    MarkDuplicates(project, {.queries = queries,
                             .uniquePairsOnly = flags.uniquePairsOnly,
                             .sourceLangId = sourceLangId,
                             .targetLangId = targetLangId,
                             .fileId = fileId,
                             .progress = progress});
    auto recordset = project.OpenRecordset(queries.mainQuery, RecordsetType::Dynaset);
    if (!recordset) {
        return everrInvalidQuery;
    }
    ExportRows(std::move(recordset));
    WriteFooter();
    CloseOutput();
    return S_OK;
}

bool CExternalViewExport::OpenFile(TextFileFormat format) {
    const auto factory = createTextFileFactory();
    if (!factory) {
        return false;
    }
    output.reset();
    output = factory->OpenTextFile(destination, format);
    return output != nullptr;
}

void CExternalViewExport::CloseOutput() {
    output->Close();
    output.reset();
}

void CExternalViewExport::ExportRows(std::unique_ptr<Recordset> recordset) {
    DaoRecordset rows;
    rows.Attach(std::move(recordset));
    if (rows.IsEmpty()) {
        return;
    }
    WalkProgress walk(progress, targetLangId, rows.Count(), flags.uniquePairsOnly);
    rows.BindField(IdPosition, u"ID");
    rows.BindField(SourcePosition, u"Source");
    rows.BindField(TargetPosition, u"Target");
    rows.BindField(CommentsPosition, u"Comments");
    rows.BindField(StatusPosition, u"Status");
    rows.BindField(DonePosition, u"Done");
    rows.BindField(FileIdPosition, u"FileID");
    rows.BindField(PercentagePosition, u"Percentage");

    const auto text = [&rows](Position position) {
        return rows.GetString(position).value_or(std::u16string_view());
    };
    do {
        if (!rows.GetBool(DonePosition)) {
            const std::u16string_view source = text(SourcePosition);
            std::u16string_view target = text(TargetPosition);
            if (flags.copySourceToEmptyTarget && target.empty()) {
                target = source;
            }
            const std::u16string_view fileName = flags.showFileColumn
                                                     ? FileColumnText(rows.GetLong(FileIdPosition))
                                                     : std::u16string_view();
            WriteRow(text(IdPosition), ExportedText(source, flags.removeCodes),
                     ExportedText(target, flags.removeCodes), text(CommentsPosition),
                     rows.GetLong(StatusPosition), fileName, rows.GetLong(PercentagePosition));
        }
        walk.CountRow();
    } while (rows.MoveNext());
}

std::u16string_view CExternalViewExport::FileColumnText(std::int32_t fileId) {
    const auto known = fileNames.find(fileId);
    if (known != fileNames.end()) {
        return known->second;
    }
    return fileNames[fileId] =
               flags.useFileSpec ? FileSpecOf(*database, fileId) : FileNameOf(*database, fileId);
}

// The order of this list is the numbering of the colours.
void CExternalViewExport::BuildStatusColors(const ExportColors& colors) {
    const std::pair<std::int32_t, std::int32_t> keysAndColors[] = {
        {0, White},
        {StatusExact, colors.exact},
        {StatusFuzzy, colors.fuzzy},
        {StatusAssembled, colors.assembled},
        {StatusPropagated, colors.propagated},
        {StatusAutoPropagated, colors.autoPropagated},
        {StatusLocked, colors.locked},
        {StatusPending, colors.pending},
        {StatusGuaranteed, colors.guaranteed},
        {BorderColorKey, Black},
        {StatusMachineTranslated, colors.machineTranslated},
    };
    std::int32_t number = 0;
    for (const auto& [key, color] : keysAndColors) {
        statusColors[key] = ++number;
        AddColor(color);
    }
}

std::int32_t CExternalViewExport::StatusKeyOfRow(std::int32_t status) {
    for (const std::int32_t key :
         {StatusGuaranteed, StatusPending, StatusLocked, StatusAutoPropagated, StatusPropagated,
          StatusMachineTranslated, StatusAssembled, StatusFuzzy, StatusExact}) {
        if ((status & key) != 0) {
            return key;
        }
    }
    return 0;
}

std::int32_t CExternalViewExport::ColorNumberOfRow(std::int32_t status) const {
    const std::int32_t key = StatusKeyOfRow(status);
    return key != 0 ? statusColors.at(key) : 0;
}

bool CExternalViewExport::IsRowColored(std::int32_t status) const {
    return (status & StatusLocked) != 0 || flags.colorAllRows;
}

}  // namespace generalutilities
