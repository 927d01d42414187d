#include "reimport.h"

#include <generalutilities/project/accept.h>
#include <generalutilities/project/review_report.h>

#include "failure.h"
#include "language.h"
#include "project_checks.h"
#include "unicode.h"

namespace generalutilities::cli {

std::int32_t ReimportLanguage(const OpenProject& project, const std::string& language) {
    if (!CountReimportedRows(*project.database)) {
        throw Failure(
            project.path + ": nothing was imported yet; `genutil import` reads a reviewed file",
            "genutil", ErrorInvalidData);
    }
    if (!language.empty()) {
        const std::int32_t langId = ParseLanguage("--language", language);
        RequireLanguage(project, langId);
        return langId;
    }
    const auto langId = LanguageOfReimport(*project.database);
    if (!langId) {
        throw UsageError(
            "--language: the rows of the import do not tell their language; give the one of the "
            "import");
    }
    return *langId;
}

const char* CodeKindName(CodeDifference::Kind kind) {
    switch (kind) {
        case CodeDifference::Kind::Lost:
            return "lost";
        case CodeDifference::Kind::Added:
            return "added";
        case CodeDifference::Kind::Doubled:
            return "doubled";
    }
    return "different";
}

std::string DescribeCodes(const std::vector<CodeDifference>& codes) {
    std::string text;
    for (const CodeDifference& difference : codes) {
        text += (text.empty() ? "" : "; ") + std::string("code ") + CodeKindName(difference.kind) +
                ": " + ShowControls(ToUtf8(difference.code));
        if (difference.count > 1) {
            text += " (" + std::to_string(difference.count) + " times)";
        }
    }
    return text;
}

}  // namespace generalutilities::cli
