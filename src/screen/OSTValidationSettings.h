#pragma once

#include <QString>
#include <QVariantMap>

namespace ostrel {

// How an input takes part in its screen's validation, read once:
//
//   "isOptional", "isUnique"  strings read as booleans; false otherwise
//   "userPropertyName"        the user property the value is stored under; the element key otherwise
//   "errorMessage"            the message shown when it is invalid; "Invalid input." otherwise
//   "textType", "secureTextEntry"  how the value is kept (ValueVisibility); only the screen's
//                             inputs (text fields and pickers) take it
//
// A value type.
struct OSTValidationSettings {
    // A PIN ("phoneNumberPin") is kept only for the moment, a password ("password", or a
    // "secureTextEntry" string read as true) as a secret, a validated phone number
    // ("phoneNumberValidated") as the number to verify.
    enum class ValueVisibility { Plain, Transient, Secret, PhoneNumberToVerify };

    bool optional = false;
    bool unique = false;
    QString userPropertyName;
    QString errorMessage;
    ValueVisibility valueVisibility = ValueVisibility::Plain;

    static OSTValidationSettings fromProperties(const QString &key, const QVariantMap &properties);

    friend bool operator==(const OSTValidationSettings &, const OSTValidationSettings &) = default;
};

} // namespace ostrel
