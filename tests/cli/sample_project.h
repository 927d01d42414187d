#pragma once

#include "program.h"

#include <string>

namespace generalutilities::cli_test {

/// A project with French and Arabic: two files, codes, a comment, a locked row, a pair of equal
/// rows and a lexicon entry. Its rows have the identifiers A1 to A6 and L1. Gives its path.
std::string MakeProject(const TemporaryFolder& folder, const std::string& name = "a.project");

/// A project of many rows, as French, whose export is about a kilobyte a row.
std::string MakeLongProject(const TemporaryFolder& folder, int rows);

/// Runs SQL on a project file, past the library.
void RunSql(const std::string& path, const std::string& sql);

}  // namespace generalutilities::cli_test
