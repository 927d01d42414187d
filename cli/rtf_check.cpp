#include "rtf_check.h"

#include "failure.h"
#include "unicode.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace generalutilities::cli {
namespace {

using namespace std::string_view_literals;

/// What comes in the place of a reviewed table, by its first bytes.
struct OtherKind {
    std::string_view start;
    std::string_view advice;
};
constexpr OtherKind OtherKinds[] = {
    {"PK\x03\x04"sv,
     "it looks like a DOCX or ODT document; open it in the word processor and save it as Rich Text "
     "Format (RTF)"},
    {"\xD0\xCF\x11\xE0"sv,
     "it looks like a DOC document; open it in the word processor and save it as Rich Text Format "
     "(RTF)"},
    {"<"sv,
     "it looks like HTML or XML, which cannot be imported; a page is for reading, import the RTF"},
    {"%PDF"sv,
     "it looks like a PDF document, which cannot be imported; ask for the document that it was "
     "made from"},
    {"\xFF\xFE"sv, "it looks like a text in UTF-16; save it as plain ASCII, as RTF is"},
    {"\xFE\xFF"sv, "it looks like a text in UTF-16; save it as plain ASCII, as RTF is"},
    {"{\0\\\0"sv, "it looks like a text in UTF-16; save it as plain ASCII, as RTF is"},
    {"\xEF\xBB\xBF{\\rtf"sv,
     "a text editor has put a byte order mark before it; open it in the word processor and save it "
     "again"},
    {"\x1F\x8B"sv, "it is compressed with gzip; unpack it first"},
    {"SQLite format 3"sv, "it looks like a project; the reviewed table comes behind the project"},
};

std::string DescribeOtherFile(const std::string& path) {
    constexpr std::string_view Beginning = "{\\rtf1";
    char start[64] = {};
    std::ifstream file(path, std::ios::binary);
    file.read(start, sizeof start);
    const std::string_view bytes(start, static_cast<std::size_t>(file.gcount()));
    if (bytes.empty()) {
        return "the file is empty";
    }
    for (const OtherKind& kind : OtherKinds) {
        if (bytes.substr(0, kind.start.size()) == kind.start) {
            return std::string(kind.advice);
        }
    }
    if (Beginning.substr(0, bytes.size()) == bytes) {
        return "the file ends at byte offset " + std::to_string(bytes.size()) +
               "; was it cut off on its way?";
    }
    if (const std::size_t place = bytes.find(Beginning); place != std::string_view::npos) {
        return "that stands at byte offset " + std::to_string(place) +
               "; open it in the word processor and save it again";
    }
    return "save the reviewed table as Rich Text Format (RTF)";
}

void RequireReadable(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || access(path.c_str(), R_OK) != 0) {
        throw Failure(path + ": cannot be opened: " + std::strerror(errno), "genutil",
                      errno == EACCES ? ErrorAccessDenied : ErrorFileNotFound);
    }
    if (S_ISDIR(status.st_mode)) {
        throw Failure(path + ": is a folder; name the reviewed file in it", "genutil",
                      everrUnableToOpenFile);
    }
    if (!S_ISREG(status.st_mode)) {
        throw Failure(path + ": is a pipe or a device; save its content to a file first", "genutil",
                      everrUnableToOpenFile);
    }
}

}  // namespace

void RequireRtf(const ComPtr<IExtViewHelper>& helper, const std::string& path) {
    RequireReadable(path);
    VARIANT_BOOL isRtf = VARIANT_FALSE;
    SetErrorInfo(0, nullptr);
    Check(helper->IsFileRTF(Bstr(ArgumentToUtf16("FILE", path)).Get(), &isRtf), "reading " + path);
    if (isRtf == VARIANT_FALSE) {
        throw Failure(path +
                          ": byte offset 0: expected \"{\\rtf1\", the beginning of an RTF file; " +
                          DescribeOtherFile(path),
                      "genutil", everrNotEnoughFieldsPresent);
    }
}

}  // namespace generalutilities::cli
