#pragma once

#include <generalutilities/automation/unknown.h>
#include <generalutilities/database.h>

namespace generalutilities {

/// What a project object answers besides `IUnknown`: the database behind it. The object that
/// `OpenProjectDatabase` gives is one; a C++ host with a database of its own implements this
/// interface on its project object.
struct IProjectDatabase : IUnknown {
    /// The open database; it belongs to the object and lives as long. Null if there is none.
    virtual Database* GetDatabase() noexcept = 0;
};
inline constexpr IID IID_IProjectDatabase = MakeGuid("{00000071-0000-0010-8000-00AA006D2EA4}");

}  // namespace generalutilities
