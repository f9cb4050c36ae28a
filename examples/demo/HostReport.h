#pragma once

#include <QString>
#include <QVariantMap>

namespace ostrel::demo {

// What the demo host's window says, whichever toolkit draws it: who is signed in, and an entry of
// the hand-over log.
class HostReport {
public:
    HostReport() = delete;

    // Rich text: the SDK's current user, or that nobody is signed in.
    static QString signedInUser();
    // When, which delegate call, how the host answered and the fields (a password hidden).
    static QString handOverEntry(const QString &callback, const QVariantMap &fields, const QString &outcome);
    // Said in the log when an experience asked for by a button has nothing to show.
    static QString nothingToShow();
};

} // namespace ostrel::demo
