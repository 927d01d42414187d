#pragma once

#include <generalutilities/automation/pointers.h>
#include <generalutilities/automation/project_database.h>

#include <string>
#include <string_view>

/// The client's side of the component border: creating classes, and a failing status with the words
/// that the library left about it turned into a `Failure`.
namespace generalutilities::cli {

/// Does nothing for a status that is no failure. Otherwise takes the thread's error object and
/// throws a `Failure` with its description and source; without one, with the status in words.
/// `doing` says what was tried, on which file: "exporting app.project".
void Check(HRESULT status, std::string_view doing);

/// Creates an object of a class. Throws a `Failure` that says which class is missing.
template <class Interface>
ComPtr<Interface> CreateComponent(REFCLSID clsid, REFIID iid, std::string_view className) {
    ComPtr<Interface> object;
    SetErrorInfo(0, nullptr);
    Check(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, iid, object.OutVoid()),
          "creating " + std::string(className));
    return object;
}

/// An open project as the components take it, with the database behind it for what the tool asks
/// itself. Both end together.
struct OpenProject {
    std::string path;  ///< as it was typed
    ComPtr<IUnknown> object;
    ComPtr<IProjectDatabase> access;
    Database* database = nullptr;  ///< belongs to `access`
};

/// Opens a project; `path` is the argument as typed. Throws a `Failure` with the library's words.
OpenProject OpenProjectFile(const std::string& path);

}  // namespace generalutilities::cli
