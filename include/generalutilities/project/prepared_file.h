#pragma once

#include <generalutilities/extview/prepare_review.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace generalutilities {

namespace files {
class TemporaryFile;
}

/// A reviewed file in the form in which a host hands it to an import: prepared, or as it is.
class PreparedFile {
  public:
    /// Prepares the file at `path` (prepare_review.h). Where that changes anything the copy stands
    /// in a temporary file that lives as long as the object. Throws `Error` when the file cannot be
    /// read or the copy cannot be written.
    static PreparedFile Prepare(std::u16string_view path,
                                const std::function<void(const ReviewFindingPlace&)>& found = {});
    /// The file itself.
    static PreparedFile AsIs(std::u16string_view path);

    PreparedFile(PreparedFile&&) noexcept;
    PreparedFile& operator=(PreparedFile&&) noexcept;
    ~PreparedFile();

    /// The reviewed file, as the user knows it.
    const std::u16string& Name() const { return name; }
    /// What an import is to read: the file or its copy.
    std::u16string Path() const;
    const PreparedReview& Preparation() const { return preparation; }
    /// Whether an import is to read it as a bilingual document.
    bool IsBilingual() const { return isBilingual; }

  private:
    explicit PreparedFile(std::u16string_view path);

    std::u16string name;
    bool isBilingual;
    std::unique_ptr<files::TemporaryFile> copy;  ///< null when the file itself is read
    PreparedReview preparation;
};

}  // namespace generalutilities
