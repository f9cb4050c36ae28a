#include "experience/OSTScreen.h"

#include "experience/OSTFlow.h"

#include "core/OSTDictionaryHelpers.h"

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

// The metadata keys that the events fired for a screen carry, in this order.
const QStringList screenTrackingKeys = {
    u"audience_name"_s,    u"ost_experience_test_id"_s, u"flow_name"_s,     u"ost_flow_variation_id"_s,
    u"rotation_name"_s,    u"screen_name"_s,            u"ost_segment_id"_s, u"segment_name"_s,
    u"ost_super_json_id"_s, u"test_name"_s,             u"ost_variation_id"_s, u"variation_name"_s,
    u"variation_version"_s,
};

} // namespace

OSTScreen::OSTScreen(const QString &key, const QVariantMap &metadata, OSTDocumentOrigin origin)
    : m_key(key),
      m_json(ost_stringForKey(metadata, u"json_data"_s).value_or(QString())),
      m_jsonVersion(ost_stringForKey(metadata, u"json_version"_s).value_or(QString())),
      m_name(ost_stringForKey(metadata, u"experience_name"_s).value_or(QString())),
      m_trackingParameters(ost_presentValuesForKeys(metadata, screenTrackingKeys)),
      m_origin(origin)
{
}

std::shared_ptr<const OSTFlow> OSTScreen::flow() const
{
    QMutexLocker locker(&m_flowLock);
    return m_flow.lock();
}

std::shared_ptr<const OSTTrackedItem> OSTScreen::trackedFlow() const
{
    return flow();
}

void OSTScreen::setFlow(const std::shared_ptr<const OSTFlow> &flow)
{
    QMutexLocker locker(&m_flowLock);
    m_flow = flow;
}

} // namespace ostrel
