#pragma once

#include <generalutilities/automation/project_database.h>

#include "frame/object.h"

#include <memory>

namespace generalutilities {

/// The project object that `OpenProjectDatabase` gives: an open database and nothing else.
class CProjectDatabase : public IProjectDatabase {
  public:
    explicit CProjectDatabase(std::unique_ptr<Database> opened) : database(std::move(opened)) {}

    void* FindInterface(REFIID iid) noexcept {
        IProjectDatabase* const self = this;
        return FindInTable(iid, {{IID_IUnknown, self}, {IID_IProjectDatabase, self}});
    }
    HRESULT Start() noexcept { return S_OK; }
    Database* GetDatabase() noexcept override { return database.get(); }

  private:
    std::unique_ptr<Database> database;
};

}  // namespace generalutilities
