#pragma once

#include <generalutilities/automation/text_file.h>

#include <cstdint>
#include <memory>
#include <string>

namespace generalutilities::cli {

/// Watches the writing of export files.
///
/// The export does not look at the results of writing, so the tool puts a text file factory of its
/// own in the place of the built-in one, for as long as this object lives. The factory hands every
/// call through to the built-in one and keeps the first failure in mind.
class WriteWatch {
  public:
    WriteWatch();
    ~WriteWatch();
    WriteWatch(const WriteWatch&) = delete;
    WriteWatch& operator=(const WriteWatch&) = delete;

    /// Throws a `Failure` when anything that was written to `path` since the beginning did not
    /// reach it. To be called when the writing is over.
    void ThrowIfFailed(const std::string& path) const;

    struct Record;

  private:
    std::shared_ptr<Record> record;
    std::uint32_t cookie = 0;
};

}  // namespace generalutilities::cli
