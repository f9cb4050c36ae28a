#pragma once

#include <ostrel/OSTUser.h>

#include <QByteArray>

#include <optional>

namespace ostrel {

// The stored form of a user: a property-list dictionary of its five fields ("userID", "name",
// "properties", "activeABNTests" as [{"name", "variation"}], "lastViewedVariation"; absent
// strings are left out), archived with OSTPropertyListArchive.
class OSTUserArchive {
public:
    OSTUserArchive() = delete;

    static QByteArray archive(const OSTUser &user);
    // Nothing when the bytes are not an archive or do not hold a dictionary. Fields of the wrong
    // type read as absent.
    static std::optional<OSTUser> unarchive(const QByteArray &bytes);
};

} // namespace ostrel
