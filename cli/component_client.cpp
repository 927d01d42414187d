#include "component_client.h"

#include <generalutilities/automation/client.h>

#include "failure.h"
#include "unicode.h"

namespace generalutilities::cli {
void Check(HRESULT status, std::string_view doing) {
    if (Succeeded(status)) {
        return;
    }
    const ComponentError failure = TakeFailure(status);
    throw Failure(std::string(doing) + ": " + failure.what(), failure.Source(), status);
}

OpenProject OpenProjectFile(const std::string& path) {
    const std::u16string location = ArgumentToUtf16("PROJECT", path);
    OpenProject project;
    project.path = path;
    SetErrorInfo(0, nullptr);
    Check(OpenProjectDatabase(location.c_str(), project.object.Out()), "opening " + path);
    project.access = project.object.As<IProjectDatabase>(IID_IProjectDatabase);
    if (project.access) {
        project.database = project.access->GetDatabase();
    }
    if (project.database == nullptr) {
        throw Failure("opening " + path + ": the project object gives no database");
    }
    return project;
}

}  // namespace generalutilities::cli
