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
    explicit RawFile(std::u16string_view path) {
        sqlite3_open(files::ToNativePath(path).c_str(), &handle);
    }
    ~RawFile() { sqlite3_close(handle); }
    RawFile(const RawFile&) = delete;
    RawFile& operator=(const RawFile&) = delete;

    void Run(const std::string& sql) {
        EXPECT_EQ(sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sql << ": " << sqlite3_errmsg(handle);
    }

    /// The first value of a query's first row.
    std::string Value(const std::string& sql) {
        std::string value;
        const auto keep = [](void* kept, int, char** values, char**) {
            *static_cast<std::string*>(kept) = values[0] != nullptr ? values[0] : "(null)";
            return 0;
        };
        EXPECT_EQ(sqlite3_exec(handle, sql.c_str(), keep, &value, nullptr), SQLITE_OK) << sql;
        return value;
    }

    /// The handle, for an owner that closes it.
    sqlite3* Release() { return std::exchange(handle, nullptr); }

  private:
    sqlite3* handle = nullptr;
};

}  // namespace generalutilities
