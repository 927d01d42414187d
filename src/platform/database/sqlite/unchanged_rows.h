#pragma once

#include "platform/database/sqlite/connection.h"
#include "platform/database/sqlite/dialect.h"

#include <string>

/// Clearing a mark in a whole table, as every export does, when hardly a row has it.
namespace generalutilities::sqlite {

/// The text of a change, made to leave alone the rows that hold the new value already: a row that
/// is written costs its page twice, in the journal and in the file, even if nothing in it changes.
/// Done for one number put into a yes/no column of a table without triggers; nobody can see a
/// difference there. Any other text comes back as it is.
std::string SkipUnchangedRows(Connection& connection, const Translation& change);

}  // namespace generalutilities::sqlite
