#pragma once

#include <generalutilities/status.h>

#include <stdexcept>
#include <string>

/// The failure of a plain function, for callers that want exceptions and words instead of status
/// values.
namespace generalutilities {

/// `what()` is UTF-8 for people: which file, which row, line or offset, what was expected, and what
/// to try. `Status` is the failing status that a component would return for the same cause.
class Error : public std::runtime_error {
  public:
    Error(HRESULT failingStatus, const std::string& message)
        : std::runtime_error(message), status(failingStatus) {}

    HRESULT Status() const { return status; }

  private:
    HRESULT status;
};

inline constexpr HRESULT ErrorFileNotFound = MakeStatus(0x80070002);
inline constexpr HRESULT ErrorAccessDenied = MakeStatus(0x80070005);
inline constexpr HRESULT ErrorInvalidData = MakeStatus(0x8007000D);  ///< the content of a file
inline constexpr HRESULT ErrorWriteProtected = MakeStatus(0x80070013);
inline constexpr HRESULT ErrorWriteFault = MakeStatus(0x8007001D);
inline constexpr HRESULT ErrorReadFault = MakeStatus(0x8007001E);
inline constexpr HRESULT ErrorLockViolation = MakeStatus(0x80070021);
inline constexpr HRESULT ErrorFileExists = MakeStatus(0x80070050);
inline constexpr HRESULT ErrorDiskFull = MakeStatus(0x80070070);
inline constexpr HRESULT ErrorFileTooLarge = MakeStatus(0x800700DF);

}  // namespace generalutilities
