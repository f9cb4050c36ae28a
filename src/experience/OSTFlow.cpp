#include "experience/OSTFlow.h"

#include "core/OSTDictionaryHelpers.h"

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

const QStringList flowTrackingKeys = {u"ost_segment_id"_s, u"segment_name"_s};

QStringList lowerCasedStringSteps(const QVariantMap &metadata)
{
    QStringList keys;
    for (const QVariant &step : ost_arrayForKey(metadata, u"steps"_s).value_or(QVariantList())) {
        if (step.typeId() == QMetaType::QString)
            keys.append(step.toString().toLower());
    }
    return keys;
}

// The object under "properties"."<key>"; empty when either is missing.
QVariantMap propertiesEntry(const QVariantMap &metadata, const QString &key)
{
    const QVariantMap properties = ost_dictionaryForKey(metadata, u"properties"_s).value_or(QVariantMap());
    return ost_dictionaryForKey(properties, key).value_or(QVariantMap());
}

} // namespace

OSTFlow::OSTFlow(const QString &key, const QVariantMap &metadata, OSTDocumentOrigin origin)
    : m_key(key),
      m_name(ost_stringForKey(metadata, u"name"_s).value_or(QString())),
      m_screenKeys(lowerCasedStringSteps(metadata)),
      m_variationName(ost_stringForKey(metadata, u"variation_name"_s)),
      m_trackingParameters(ost_presentValuesForKeys(metadata, flowTrackingKeys)),
      m_endAction(propertiesEntry(metadata, u"flowEndAction"_s)),
      m_facebookLoginProperties(propertiesEntry(metadata, u"loginFacebook"_s)),
      m_origin(origin)
{
}

} // namespace ostrel
