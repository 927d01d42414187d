#pragma once

#include <generalutilities/status.h>

#include <stdexcept>
#include <string>

/// The two ways in which a command gives up. A command throws; the application turns what it threw
/// into words on standard error and an exit code.
namespace generalutilities::cli {

/// The command line asks for something that cannot be: ends as `ExitCode::WrongUse`.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The work failed: ends as `ExitCode::Failed`. `what()` says what happened to which file, row or
/// byte, what was expected and what to try.
class Failure : public std::runtime_error {
  public:
    /// `source` names who reported it, such as "GeneralUtilities.ExtViewHelper.1" or "SQLite".
    explicit Failure(const std::string& description, std::string reportedBy = "genutil",
                     HRESULT failedStatus = S_OK)
        : std::runtime_error(description), source(std::move(reportedBy)), status(failedStatus) {}

    const std::string& Source() const { return source; }
    /// The component's status; S_OK when no component was involved.
    HRESULT Status() const { return status; }

  private:
    std::string source;
    HRESULT status;
};

}  // namespace generalutilities::cli
