#pragma once

#include <ostrel/OSTPropertyConversions.h>

#include <QDateTime>
#include <QStringList>
#include <QVariantMap>

namespace ostrel {

// The wheel of a picker, read once from its "picker" object:
//
//   "pickerType"  "countryCode", "date", else custom data
//   "pickerData"  the custom choices, strings only (others are skipped, with a debug line); read
//                 for custom data only
//   "pickerMode"  the date wheel's mode (UIDatePickerMode words); date otherwise
//   "minDate", "maxDate", "startDate"  dates as "MM/dd/yyyy" strings; invalid when absent or
//                 unreadable
//
// A value type.
struct OSTPickerWheel {
    OSTPickerType type = OSTPickerTypeCustomData;
    QStringList customData;
    UIDatePickerMode dateMode = UIDatePickerModeDate;
    QDateTime minimumDate;
    QDateTime maximumDate;
    QDateTime startDate;

    static OSTPickerWheel fromPicker(const QVariantMap &picker);
};

} // namespace ostrel
