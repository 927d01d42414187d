#include "component_client.h"

#include "failure.h"
#include "unicode.h"

#include <cstdio>

namespace generalutilities::cli {
namespace {

/// What a status means where the library left no words about it.
std::string StatusText(HRESULT status) {
    switch (status) {
        case E_NOTIMPL:
            return "this is not implemented yet";
        case E_POINTER:
        case E_INVALIDARG:
            return "an argument was refused";
        case E_OUTOFMEMORY:
            return "out of memory";
        case CLASS_E_CLASSNOTAVAILABLE:
            return "the library does not have this class yet";
        case REGDB_E_CLASSNOTREG:
            return "the class is unknown";
        default:
            return "the library gave no words for this failure";
    }
}

}  // namespace

void Check(HRESULT status, std::string_view doing) {
    if (Succeeded(status)) {
        return;
    }
    std::string description;
    std::string source = "GeneralUtilities";
    ComPtr<IErrorInfo> error;
    if (GetErrorInfo(0, error.Out()) == S_OK && error) {
        Bstr text;
        if (Succeeded(error->GetDescription(text.Out()))) {
            description = ToUtf8(text.View());
        }
        if (Succeeded(error->GetSource(text.Out())) && !text.View().empty()) {
            source = ToUtf8(text.View());
        }
    }
    if (description.empty()) {
        description = StatusText(status);
    }
    throw Failure(std::string(doing) + ": " + description, source, status);
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
