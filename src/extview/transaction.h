#pragma once

#include <generalutilities/database.h>

namespace generalutilities {

/// A transaction that is undone unless it is committed. Where the engine gives none, the work goes
/// on without one.
class Transaction {
  public:
    explicit Transaction(Database& opened) : database(opened), isOpen(opened.BeginTrans()) {}
    ~Transaction() {
        if (isOpen) {
            database.Rollback();
        }
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    bool IsOpen() const { return isOpen; }

    bool Commit() {
        const bool committed = isOpen && database.CommitTrans();
        isOpen = isOpen && !committed;
        return committed;
    }

  private:
    Database& database;
    bool isOpen;
};

}  // namespace generalutilities
