#pragma once

#include <generalutilities/error.h>

#include <stdexcept>
#include <string>
#include <utility>

/// The two ways in which a command gives up. A command throws; the application turns what it threw
/// into words on standard error and an exit code. The plain functions of the library throw `Error`,
/// which ends like a `Failure`.
namespace generalutilities::cli {

/// The command line itself is wrong, whatever the disk holds: ends as `ExitCode::WrongUse`.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The work failed: ends as `ExitCode::Failed`. `what()` says what happened to which file, row or
/// byte, what was expected and what to try.
class Failure : public Error {
  public:
    /// `source` names who reported it, such as "GeneralUtilities.ExtViewHelper.1" or "SQLite".
    explicit Failure(const std::string& description, std::string reportedBy = "genutil",
                     HRESULT failedStatus = E_FAIL)
        : Error(failedStatus, description), source(std::move(reportedBy)) {}

    const std::string& Source() const { return source; }

  private:
    std::string source;
};

}  // namespace generalutilities::cli
