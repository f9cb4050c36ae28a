#include "events/OSTEvent.h"

#include <QUuid>

using namespace Qt::StringLiterals;

namespace ostrel {

OSTEvent::OSTEvent(const QString &name, const QVariantMap &parameters)
    : m_name(name), m_parameters(parameters)
{
    m_parameters.insert(u"ost_event_id"_s, QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper());
    m_parameters.insert(u"event_type"_s, name);
}

QVariantMap OSTEvent::markedAutomatic(QVariantMap parameters)
{
    parameters.insert(u"auto"_s, true);
    return parameters;
}

} // namespace ostrel
