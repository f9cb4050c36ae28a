#include "experience/OSTAction.h"

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTLogging.h"

using namespace Qt::StringLiterals;

namespace ostrel {

OSTAction::OSTAction(const QVariantMap &properties) : OSTAction(properties, 1) {}

OSTAction::OSTAction(const QVariantMap &properties, int depth)
    : m_name(ost_stringForKey(properties, u"func"_s).value_or(QString())),
      m_type(OSTActionTypeFromString(m_name))
{
    if (const auto parameters = ost_dictionaryForKey(properties, u"params"_s))
        readParameters(*parameters, depth);
}

void OSTAction::readParameters(const QVariantMap &parameters, int depth)
{
    switch (m_type) {
    case OSTActionTypeOpenURL:
        m_urlString = ost_stringForKey(parameters, u"url"_s).value_or(QString());
        m_shouldCloseSelf = ost_finiteDouble(ost_numberForKey(parameters, u"closeSelf"_s)).value_or(0.0) != 0.0;
        break;
    case OSTActionTypeLoginFacebook:
        if (const auto success = ost_dictionaryForKey(parameters, u"successAction"_s)) {
            if (depth >= maximumNestingDepth) {
                OSTLogging::logWarning(u"An action nests more than %1 success actions; the deeper ones are ignored."_s,
                                       maximumNestingDepth);
                break;
            }
            m_successAction = std::shared_ptr<const OSTAction>(new OSTAction(*success, depth + 1));
        }
        break;
    case OSTActionTypeStartFlow:
        m_flowKey = ost_stringForKey(parameters, u"flowName"_s).value_or(QString()).toLower();
        break;
    default:
        break;
    }
}

} // namespace ostrel
