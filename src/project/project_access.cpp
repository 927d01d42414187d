#include "project/project_access.h"

#include <generalutilities/error.h>
#include <generalutilities/project/contents.h>
#include <generalutilities/project/language_tags.h>

#include "platform/files/utf8.h"
#include "text/decimal.h"

#include <algorithm>

namespace generalutilities {
namespace {

HRESULT StatusOf(DatabaseFailure::Kind kind) {
    using Kind = DatabaseFailure::Kind;
    switch (kind) {
        case Kind::NotFound:
            return ErrorFileNotFound;
        case Kind::NotAProject:
        case Kind::Corrupt:
            return ErrorInvalidData;
        case Kind::Locked:
            return ErrorLockViolation;
        case Kind::ReadOnly:
            return ErrorWriteProtected;
        case Kind::DiskFull:
            return ErrorDiskFull;
        case Kind::OutOfMemory:
            return E_OUTOFMEMORY;
        case Kind::None:
        case Kind::Query:
        case Kind::Other:
            break;
    }
    return E_FAIL;
}

bool EqualNames(std::u16string_view a, std::u16string_view b) {
    const auto lower = [](char16_t unit) {
        return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
    };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [&](char16_t x, char16_t y) { return lower(x) == lower(y); });
}

}  // namespace

void ThrowDatabaseFailure(const DatabaseFailure& failure, std::string_view doing) {
    std::string message(doing);
    message += ": ";
    message += failure.description.empty() ? "the database gave no reason"
                                           : files::ToUtf8Lossy(failure.description);
    if (!failure.source.empty()) {
        message += " (" + files::ToUtf8Lossy(failure.source) + ")";
    }
    throw Error(StatusOf(failure.kind), message);
}

TableReader::TableReader(Database& opened, std::u16string_view tableName, RecordsetType type)
    : database(opened),
      name(type == RecordsetType::Table ? "the table " + files::ToUtf8Lossy(tableName)
                                        : "a query of the project"),
      recordset(opened.OpenRecordset(tableName, type)) {
    if (!recordset) {
        Fail("opening " + name);
    }
    hasIndex = type == RecordsetType::Table && recordset->SetIndex(u"iID");
}

void TableReader::Fail(std::string_view doing) {
    ThrowDatabaseFailure(database.LastFailure(), doing);
}

int TableReader::Field(std::u16string_view column) {
    const auto field = recordset->FieldIndex(column);
    if (!field) {
        throw Error(ErrorInvalidData, name + " has no column " + files::ToUtf8Lossy(column) +
                                          "; the file is no complete project");
    }
    return *field;
}

void TableReader::MoveNext() {
    if (!recordset->MoveNext()) {
        Fail("reading " + name);
    }
}

bool TableReader::Seek(std::u16string_view key) {
    if (!hasIndex) {
        throw Error(ErrorInvalidData,
                    name + " has no index iID, by which rows are found; create the project anew");
    }
    if (!recordset->Seek(key)) {
        Fail("searching " + name);
    }
    return !recordset->NoMatch();
}

std::uint64_t TableReader::Count() {
    return static_cast<std::uint64_t>(std::max(recordset->RecordCount(), 0));
}

std::u16string_view TableReader::Text(int field) {
    const FieldValue value = recordset->GetValue(field);
    const auto* text = std::get_if<std::u16string_view>(&value);
    return text == nullptr ? std::u16string_view() : *text;
}

std::int32_t TableReader::Long(int field) {
    const FieldValue value = recordset->GetValue(field);
    const auto* number = std::get_if<std::int32_t>(&value);
    return number == nullptr ? 0 : *number;
}

bool TableReader::Bool(int field) {
    const FieldValue value = recordset->GetValue(field);
    const auto* flag = std::get_if<bool>(&value);
    return flag != nullptr && *flag;
}

void TableReader::AddNew() {
    if (!recordset->AddNew()) {
        Fail("adding a row to " + name);
    }
}

void TableReader::Edit() {
    if (!recordset->Edit()) {
        Fail("changing a row of " + name);
    }
}

void TableReader::Put(int field, const FieldValue& value) {
    if (!recordset->PutValue(field, value)) {
        Fail("writing a field of " + name);
    }
}

void TableReader::Update() {
    if (!recordset->Update()) {
        Fail("writing a row of " + name);
    }
}

ProjectTransaction::ProjectTransaction(Database& opened) : database(opened) {
    if (!database.BeginTrans()) {
        ThrowDatabaseFailure(database.LastFailure(), "beginning to write the project");
    }
}

ProjectTransaction::~ProjectTransaction() {
    if (isOpen) {
        database.Rollback();
    }
}

void ProjectTransaction::Commit() {
    if (!database.CommitTrans()) {
        ThrowDatabaseFailure(database.LastFailure(), "writing the project");
    }
    isOpen = false;
}

std::u16string LanguageColumn(std::u16string_view name, std::int32_t langId) {
    std::u16string column(name);
    column += u'_';
    AppendDecimal(column, langId);
    return column;
}

void RequireLanguage(Database& database, std::int32_t langId) {
    const std::vector<std::int32_t> languages = ProjectLanguages(database);
    if (std::find(languages.begin(), languages.end(), langId) != languages.end()) {
        return;
    }
    std::string list;
    for (const std::int32_t language : languages) {
        list += (list.empty() ? "" : ", ") + LanguageForMessage(language);
    }
    throw Error(E_INVALIDARG, "the project has no target language " + LanguageForMessage(langId) +
                                  "; it has " + list);
}

bool HasTable(Database& database, std::u16string_view table) {
    const std::vector<std::u16string> names = database.TableNames();
    return std::any_of(names.begin(), names.end(),
                       [&](const std::u16string& name) { return EqualNames(name, table); });
}

std::string LanguageForMessage(std::int32_t langId) {
    const std::string number = std::to_string(langId);
    const std::string tag = files::ToUtf8Lossy(TagOfLangId(langId));
    return tag == number ? number : tag + " (" + number + ")";
}

}  // namespace generalutilities
