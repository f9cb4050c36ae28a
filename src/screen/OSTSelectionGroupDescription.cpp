#include "screen/OSTSelectionGroupDescription.h"

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTLogging.h"
#include "screen/OSTElementKeys.h"

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

int boundForKey(const QVariantMap &properties, const QString &key)
{
    const double number = ost_finiteDouble(ost_numberForKey(properties, key)).value_or(0);
    return int(std::clamp(number, 0.0, double(std::numeric_limits<int>::max())));
}

QVariant memberValue(const QVariantMap &members, const QString &key)
{
    const QVariant value = members.value(key);
    if (value.metaType() == QMetaType::fromType<QString>())
        return value;
    if (QVariant number = ost_numberForKey(members, key); !number.isNull())
        return number;
    if (const std::optional<QVariantMap> dictionary = ost_dictionaryForKey(members, key))
        return *dictionary;
    return {};
}

} // namespace

OSTSelectionGroupDescription::OSTSelectionGroupDescription(const QString &key, const QVariantMap &properties)
    : m_key(key),
      m_minimumSelection(boundForKey(properties, u"minimumSelection"_s)),
      m_maximumSelection(boundForKey(properties, u"maximumSelection"_s)),
      m_validation(OSTValidationSettings::fromProperties(key, properties))
{
    readMembers(properties);
    m_action = OSTElementKeys::onClick(properties);
}

OSTSelectionGroupDescription::~OSTSelectionGroupDescription() = default;

std::optional<QString> OSTSelectionGroupDescription::memberKeyForValue(const QVariant &value) const
{
    const auto found = std::find_if(m_memberValues.cbegin(), m_memberValues.cend(), [&value](const QVariant &candidate) {
        if (ost_isNumber(candidate) && ost_isNumber(value))
            return candidate.toDouble() == value.toDouble();
        return candidate.metaType() == value.metaType() && candidate == value;
    });
    if (found == m_memberValues.cend())
        return std::nullopt;
    return m_memberKeys.at(found - m_memberValues.cbegin());
}

void OSTSelectionGroupDescription::readMembers(const QVariantMap &properties)
{
    const QVariantMap members = ost_dictionaryForKey(properties, u"elements"_s).value_or(QVariantMap());
    m_listedKeys = members.keys();
    for (auto entry = members.constBegin(); entry != members.constEnd(); ++entry) {
        const QVariant value = memberValue(members, entry.key());
        if (value.isNull()) {
            OSTLogging::logDebug(u"The selection group \"%1\" skips \"%2\": its value is no string, number or dictionary."_s,
                                 m_key, entry.key());
            continue;
        }
        m_memberKeys.append(entry.key());
        m_memberValues.append(value);
    }
}

} // namespace ostrel
