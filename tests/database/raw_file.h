#pragma once

#include "platform/files/files.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <string>
#include <string_view>

namespace generalutilities {

/// Another program's connection to a file, for locks and for files that are not ours.
class RawFile {
  public:
    /// Goes around a file system that tests put in front of SQLite's own.
    explicit RawFile(std::u16string_view path) {
        sqlite3_open_v2(files::ToNativePath(path).c_str(), &handle,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, "unix");
    }
    ~RawFile() { sqlite3_close(handle); }
    RawFile(const RawFile&) = delete;
    RawFile& operator=(const RawFile&) = delete;

    void Run(const std::string& sql) {
        EXPECT_EQ(sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sql << ": " << sqlite3_errmsg(handle);
    }

    /// What the rows of a query hold, one line a row; the message in its place if it fails.
    std::string Rows(const std::string& sql) {
        std::string all;
        const auto add = [](void* out, int count, char** values, char**) {
            for (int i = 0; i < count; ++i) {
                *static_cast<std::string*>(out) +=
                    std::string(values[i] ? values[i] : "NULL") + "|";
            }
            *static_cast<std::string*>(out) += "\n";
            return 0;
        };
        return sqlite3_exec(handle, sql.c_str(), add, &all, nullptr) == SQLITE_OK
                   ? all
                   : sqlite3_errmsg(handle);
    }

    /// The handle, for an owner that closes it.
    sqlite3* Release() { return std::exchange(handle, nullptr); }

  private:
    sqlite3* handle = nullptr;
};

}  // namespace generalutilities
