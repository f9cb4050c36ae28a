#pragma once

#include <QString>
#include <QVariantMap>

namespace ostrel {

// How an input takes part in its screen's validation, read once:
//
//   "isOptional", "isUnique"  strings read as booleans; false otherwise
//   "userPropertyName"        the user property the value is stored under; the element key otherwise
//   "errorMessage"            the message shown when it is invalid; "Invalid input." otherwise
//
// A value type.
struct OSTValidationSettings {
    bool optional = false;
    bool unique = false;
    QString userPropertyName;
    QString errorMessage;

    static OSTValidationSettings fromProperties(const QString &key, const QVariantMap &properties);

    friend bool operator==(const OSTValidationSettings &, const OSTValidationSettings &) = default;
};

} // namespace ostrel
