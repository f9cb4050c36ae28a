#include "EventDetails.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace ostrel::demo {

QString EventDetails::of(const QVariantMap &parameters)
{
    static const QStringList keys = {u"flow_key"_s, u"experience_key"_s, u"screen_key"_s, u"action_type"_s,
                                     u"button_id"_s, u"button_value"_s, u"action_id"_s, u"action_name"_s};
    QStringList details;
    for (const QString &key : keys) {
        if (parameters.contains(key))
            details.append(key + u'=' + parameters.value(key).toString());
    }
    return details.join(u", "_s);
}

} // namespace ostrel::demo
