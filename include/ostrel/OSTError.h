#pragma once

#include <QString>

namespace ostrel {

// The error domain of transport and HTTP failures; for HTTP failures the code is the status
// (401 means the SDK token was refused).
inline const QString NSURLErrorDomain = QStringLiteral("NSURLErrorDomain");

// An error reported to a completion: where it comes from, its code within that domain, and a
// human-readable description.
struct OSTError {
    QString domain;
    int code = 0;
    QString message;

    bool is(const QString &errorDomain, int errorCode) const
    {
        return domain == errorDomain && code == errorCode;
    }
};

} // namespace ostrel
