#include "extview/dao_recordset.h"

#include <cstddef>
#include <utility>
#include <variant>

namespace generalutilities {

bool DaoRecordset::Open(Database& database, std::u16string_view name, bool dynaset) {
    Close();
    recordset =
        database.OpenRecordset(name, dynaset ? RecordsetType::Dynaset : RecordsetType::Table);
    return recordset != nullptr;
}

bool DaoRecordset::Attach(std::unique_ptr<Recordset> opened) {
    Close();
    recordset = std::move(opened);
    return recordset != nullptr;
}

void DaoRecordset::Close() {
    fields.clear();
    recordset.reset();
}

bool DaoRecordset::IsEmpty() {
    return !recordset || (recordset->Eof() && recordset->Bof());
}

bool DaoRecordset::MoveFirst() {
    return recordset && recordset->MoveFirst();
}

bool DaoRecordset::MoveNext() {
    return recordset && !recordset->Eof() && recordset->MoveNext() && !recordset->Eof();
}

std::int32_t DaoRecordset::Count() {
    if (!recordset) {
        return 0;
    }
    // A table that others work on is counted as far as its last row.
    recordset->MoveLast();
    recordset->MoveFirst();
    const std::int32_t count = recordset->RecordCount();
    recordset->MoveFirst();
    return count;
}

bool DaoRecordset::BindField(int position, std::u16string_view name) {
    if (!recordset || position < 1) {
        return false;
    }
    if (static_cast<std::size_t>(position) >= fields.size()) {
        fields.resize(static_cast<std::size_t>(position) + 1);
    }
    std::optional<int>& field = fields[static_cast<std::size_t>(position)];
    field = recordset->FieldIndex(name);
    return field.has_value();
}

FieldValue DaoRecordset::Value(int position) {
    const std::optional<int> field = Bound(position);
    return field ? recordset->GetValue(*field) : FieldValue();
}

bool DaoRecordset::SetValue(int position, const FieldValue& value) {
    const std::optional<int> field = Bound(position);
    return field && recordset->PutValue(*field, value);
}

std::optional<int> DaoRecordset::Bound(int position) const {
    const bool inside = position >= 1 && static_cast<std::size_t>(position) < fields.size();
    return recordset && inside ? fields[static_cast<std::size_t>(position)] : std::nullopt;
}

std::optional<std::u16string_view> DaoRecordset::GetString(int position) {
    const FieldValue value = Value(position);
    const auto* text = std::get_if<std::u16string_view>(&value);
    return text != nullptr ? std::optional(*text) : std::nullopt;
}

std::int32_t DaoRecordset::GetLong(int position) {
    const FieldValue value = Value(position);
    const auto* number = std::get_if<std::int32_t>(&value);
    return number != nullptr ? *number : 0;
}

bool DaoRecordset::GetBool(int position) {
    const FieldValue value = Value(position);
    const auto* flag = std::get_if<bool>(&value);
    return flag != nullptr && *flag;
}

bool DaoRecordset::SetString(int position, std::u16string_view text) {
    return SetValue(position, text);
}

bool DaoRecordset::SetLong(int position, std::int32_t value) {
    return SetValue(position, value);
}

bool DaoRecordset::SetBool(int position, bool value) {
    return SetValue(position, value);
}

bool DaoRecordset::AddNew() {
    return recordset && recordset->AddNew();
}

bool DaoRecordset::Edit() {
    return recordset && recordset->Edit();
}

bool DaoRecordset::Update() {
    return recordset && recordset->Update();
}

bool DaoRecordset::SetIndex(std::u16string_view name) {
    return recordset && recordset->SetIndex(name);
}

bool DaoRecordset::SeekEqual(std::u16string_view key) {
    return recordset && recordset->Seek(key) && !recordset->NoMatch();
}

}  // namespace generalutilities
