// Which engine serves a location. A location with a scheme ("name://...") names an engine of that
// name; anything else is the path of an SQLite file. Another engine is one more line here.

#include <generalutilities/database.h>

#include "platform/database/sqlite/open_sqlite.h"

namespace generalutilities {

namespace {

/// The scheme of a location, empty for a path.
std::u16string_view SchemeOf(std::u16string_view location) {
    const std::size_t end = location.find(u"://");
    if (end == std::u16string_view::npos) {
        return {};
    }
    const std::u16string_view scheme = location.substr(0, end);
    const bool letters =
        scheme.find_first_not_of(u"abcdefghijklmnopqrstuvwxyz") == std::u16string_view::npos;
    return letters ? scheme : std::u16string_view();
}

}  // namespace

std::unique_ptr<Database> OpenDatabase(std::u16string_view location, OpenMode mode,
                                       DatabaseFailure& failure) {
    const std::u16string_view scheme = SchemeOf(location);
    if (!scheme.empty()) {
        failure = {DatabaseFailure::Kind::NotFound,
                   u"There is no database engine for locations that begin with \"" +
                       std::u16string(scheme) + u"://\". Name a project file by its path.",
                   u"GeneralUtilities"};
        return nullptr;
    }
    return sqlite::OpenFile(location, mode, failure);
}

}  // namespace generalutilities
