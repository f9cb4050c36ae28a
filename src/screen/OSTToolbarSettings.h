#pragma once

#include <QString>
#include <QVariantMap>

namespace ostrel {

// The bar above a text field's or picker's keyboard ("toolbar"):
//
//   "cancelText"  the cancel button's title; "Cancel" otherwise
//   "acceptText"  the done button's title; "Done" otherwise
//   "barStyle"    "default" (also when absent); any other word is the black style, and
//                 "translucent" is translucent as well
//
// A value type.
struct OSTToolbarSettings {
    enum class BarStyle { Default, Black };

    QString cancelText;
    QString acceptText;
    BarStyle barStyle = BarStyle::Default;
    bool translucent = false;

    static OSTToolbarSettings fromProperties(const QVariantMap &properties);

    friend bool operator==(const OSTToolbarSettings &, const OSTToolbarSettings &) = default;
};

} // namespace ostrel
