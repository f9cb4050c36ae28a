#include "ExpectedEvents.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace ostrel::demo {

ExpectedEvents::ExpectedEvents(QList<Expectation> expectations)
    : m_expectations(std::move(expectations))
{
}

ExpectedEvents ExpectedEvents::demoWalk()
{
    const auto displayed = [](const QString &name, const QString &key) {
        return Expectation{u"OST %1 Displayed"_s.arg(name), {{u"experience_key"_s, key}}};
    };
    const auto button = [](const QString &name, const QString &key, const QString &buttonID, const QString &action) {
        return Expectation{u"OST %1 Action Tapped"_s.arg(name),
                           {{u"experience_key"_s, key}, {u"action_type"_s, u"button"_s},
                            {u"button_id"_s, buttonID}, {u"action_id"_s, action}}};
    };
    const auto choice = [](const QString &buttonID, const QString &value) {
        return Expectation{u"OST Interests Action Tapped"_s,
                           {{u"experience_key"_s, u"interests"_s}, {u"action_type"_s, u"selectionGroup"_s},
                            {u"action_name"_s, u"interestChoice"_s}, {u"button_id"_s, buttonID},
                            {u"button_value"_s, value}}};
    };
    return ExpectedEvents({
        {u"OST Session Start"_s, {{u"session_launch"_s, true}}},
        {u"OST Install Flow Start"_s, {{u"flow_key"_s, u"install"_s}}},
        displayed(u"Welcome"_s, u"welcome"_s),
        button(u"Welcome"_s, u"welcome"_s, u"createAccount"_s, u"startFlow"_s),
        displayed(u"Sign Up"_s, u"signup"_s),
        button(u"Sign Up"_s, u"signup"_s, u"signupContinue"_s, u"next"_s),
        displayed(u"Verify Phone"_s, u"verify"_s),
        {u"OST Verify Phone Action Tapped"_s,
         {{u"experience_key"_s, u"verify"_s}, {u"action_type"_s, u"textField"_s}, {u"action_name"_s, u"pinMatch"_s}}},
        displayed(u"Interests"_s, u"interests"_s),
        choice(u"planning"_s, u"planning"_s),
        choice(u"habits"_s, u"habits"_s),
        button(u"Interests"_s, u"interests"_s, u"interestsContinue"_s, u"next"_s),
        displayed(u"Notifications"_s, u"notifications"_s),
        {u"OST Notifications Action Tapped"_s,
         {{u"experience_key"_s, u"notifications"_s}, {u"action_type"_s, u"switch"_s}, {u"action_name"_s, u"switchTap"_s}}},
        button(u"Notifications"_s, u"notifications"_s, u"finish"_s, u"next"_s),
        {u"OST Signup"_s, {{u"flow_key"_s, u"SIGNUP"_s}, {u"screen_key"_s, u"notifications"_s}}},
        {u"OST Sign Up Flow Complete"_s, {{u"flow_key"_s, u"SIGNUP"_s}, {u"screen_key"_s, u"notifications"_s}}},
        {u"OST Log In Flow Start"_s, {{u"flow_key"_s, u"LOGIN"_s}}},
        displayed(u"Log In"_s, u"login"_s),
        button(u"Log In"_s, u"login"_s, u"loginSubmit"_s, u"next"_s),
        button(u"Log In"_s, u"login"_s, u"loginSubmit"_s, u"next"_s),
        {u"OST Login"_s, {{u"flow_key"_s, u"LOGIN"_s}, {u"screen_key"_s, u"login"_s}}},
        {u"OST Log In Flow Complete"_s, {{u"flow_key"_s, u"LOGIN"_s}, {u"screen_key"_s, u"login"_s}}},
    });
}

QString ExpectedEvents::firstDifference(const QList<StoredEvent> &events) const
{
    QList<StoredEvent> milestones;
    for (const StoredEvent &event : events) {
        if (event.isMilestone())
            milestones.append(event);
    }
    for (qsizetype index = 0; index < m_expectations.size(); ++index) {
        const Expectation &expected = m_expectations.at(index);
        if (index >= milestones.size())
            return u"event %1 missing: expected %2"_s.arg(index + 1).arg(describe(expected));
        const StoredEvent &event = milestones.at(index);
        if (event.eventType != expected.eventType)
            return u"event %1 is %2, expected %3"_s.arg(index + 1).arg(event.summary(), describe(expected));
        const QString missing = missingParameter(expected, event);
        if (!missing.isEmpty())
            return u"event %1 (%2): %3"_s.arg(index + 1).arg(event.summary(), missing);
    }
    if (milestones.size() > m_expectations.size())
        return u"unexpected event %1: %2"_s.arg(m_expectations.size() + 1).arg(milestones.at(m_expectations.size()).summary());
    return {};
}

QString ExpectedEvents::describe(const Expectation &expectation)
{
    const QByteArray parameters = QJsonDocument::fromVariant(expectation.parameters).toJson(QJsonDocument::Compact);
    return expectation.eventType + u' ' + QString::fromUtf8(parameters);
}

QString ExpectedEvents::missingParameter(const Expectation &expectation, const StoredEvent &event)
{
    for (auto parameter = expectation.parameters.cbegin(); parameter != expectation.parameters.cend(); ++parameter) {
        const QVariant actual = event.parameters.value(parameter.key());
        if (!actual.isValid())
            return u"has no \"%1\""_s.arg(parameter.key());
        if (actual != parameter.value())
            return u"\"%1\" is %2, expected %3"_s.arg(parameter.key(), actual.toString(), parameter.value().toString());
    }
    return {};
}

} // namespace ostrel::demo
