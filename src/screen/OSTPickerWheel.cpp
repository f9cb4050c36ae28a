#include "screen/OSTPickerWheel.h"

#include "core/OSTDateFormatter.h"
#include "core/OSTDictionaryHelpers.h"
#include "core/OSTLogging.h"

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

QStringList stringsOf(const QVariantList &list)
{
    QStringList strings;
    for (const QVariant &entry : list) {
        if (entry.metaType() == QMetaType::fromType<QString>())
            strings.append(entry.toString());
        else
            OSTLogging::logDebug(u"A picker skips an entry of \"pickerData\" that is not a string."_s);
    }
    return strings;
}

QDateTime dateForKey(const QVariantMap &picker, const QString &key)
{
    const std::optional<QString> text = ost_stringForKey(picker, key);
    return text ? ost_mdyDateFormatter().dateFromString(*text) : QDateTime();
}

} // namespace

OSTPickerWheel OSTPickerWheel::fromPicker(const QVariantMap &picker)
{
    OSTPickerWheel wheel;
    wheel.type = OSTPickerTypeFromString(ost_stringForKey(picker, u"pickerType"_s));
    if (wheel.type == OSTPickerTypeCustomData)
        wheel.customData = stringsOf(ost_arrayForKey(picker, u"pickerData"_s).value_or(QVariantList()));
    wheel.dateMode = UIDatePickerModeFromString(ost_stringForKey(picker, u"pickerMode"_s));
    wheel.minimumDate = dateForKey(picker, u"minDate"_s);
    wheel.maximumDate = dateForKey(picker, u"maxDate"_s);
    wheel.startDate = dateForKey(picker, u"startDate"_s);
    return wheel;
}

} // namespace ostrel
