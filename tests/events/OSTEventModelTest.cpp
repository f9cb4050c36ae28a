// The events the SDK records: names, types and parameters as the service and the host see them.

#include "events/OSTInternalEvent.h"
#include "events/OSTStatisticalEvent.h"

#include <ostrel/OSTConstants.h>

#include <QUuid>

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

class TrackedItem : public OSTTrackedItem {
public:
    TrackedItem(QString key, QString name, QVariantMap tracking, std::shared_ptr<const OSTTrackedItem> flow = nullptr)
        : m_key(std::move(key)), m_name(std::move(name)), m_tracking(std::move(tracking)), m_flow(flow)
    {
    }
    const QString &key() const override { return m_key; }
    const QString &name() const override { return m_name; }
    const QVariantMap &trackingParameters() const override { return m_tracking; }
    std::shared_ptr<const OSTTrackedItem> trackedFlow() const override { return m_flow; }

private:
    QString m_key;
    QString m_name;
    QVariantMap m_tracking;
    std::shared_ptr<const OSTTrackedItem> m_flow;
};

// The parameters besides the three every internal event carries.
QVariantMap ownParameters(const OSTEvent &event)
{
    QVariantMap parameters = event.parameters();
    EXPECT_EQ(parameters.take(u"auto"_s), QVariant(true)) << event.name().toStdString();
    EXPECT_EQ(parameters.take(u"event_type"_s).toString(), event.name());
    const QString identifier = parameters.take(u"ost_event_id"_s).toString();
    EXPECT_FALSE(QUuid::fromString(identifier).isNull());
    EXPECT_EQ(identifier, identifier.toUpper());
    return parameters;
}

} // namespace

TEST(EventModel, InternalEventsCarryTheirNamesTypesAndParameters)
{
    const auto flowItem = std::make_shared<const TrackedItem>(
        u"signup"_s, u"Sign Up"_s, QVariantMap{{u"campaign"_s, u"spring"_s}, {u"flow_key"_s, u"stale"_s}});
    const TrackedItem &flow = *flowItem;
    const TrackedItem screen(u"email"_s, u"Email"_s, {{u"variant"_s, u"b"_s}}, flowItem);
    const auto tapped = [](QVariantMap action) {
        action.insert(u"variant"_s, u"b"_s);
        action.insert(u"experience_key"_s, u"email"_s);
        return action;
    };

    struct Case {
        OSTInternalEvent event;
        QString name;
        QString type;
        QVariantMap parameters;
    };
    const Case cases[] = {
        {OSTInternalEvent::signupEvent(&screen), u"OST Signup"_s, OSTSignupEvent,
         {{u"flow_key"_s, u"signup"_s}, {u"screen_key"_s, u"email"_s}}},
        {OSTInternalEvent::loginEvent(&screen), u"OST Login"_s, OSTLoginEvent,
         {{u"flow_key"_s, u"signup"_s}, {u"screen_key"_s, u"email"_s}}},
        {OSTInternalEvent::signupEvent(nullptr), u"OST Signup"_s, OSTSignupEvent, {}},
        {OSTInternalEvent::loginEvent(&flow), u"OST Login"_s, OSTLoginEvent, {}},
        {OSTInternalEvent::logoutEvent(), u"OST Logout"_s, OSTLogoutEvent, {}},
        {OSTInternalEvent::flowStartedEvent(flow), u"OST Sign Up Flow Start"_s, OSTFlowStartedEvent,
         {{u"campaign"_s, u"spring"_s}, {u"flow_key"_s, u"signup"_s}}},
        {OSTInternalEvent::flowCompletedEvent(flow, screen), u"OST Sign Up Flow Complete"_s, OSTFlowCompletedEvent,
         {{u"campaign"_s, u"spring"_s}, {u"flow_key"_s, u"signup"_s}, {u"screen_key"_s, u"email"_s}}},
        {OSTInternalEvent::screenDisplayedEvent(screen), u"OST Email Displayed"_s, OSTScreenDisplayedEvent,
         {{u"variant"_s, u"b"_s}, {u"experience_key"_s, u"email"_s}}},
        {OSTInternalEvent::actionTappedEventForButton(u"continue"_s, u"next"_s, screen),
         u"OST Email Action Tapped"_s, OSTActionTappedEvent,
         tapped({{u"action_id"_s, u"next"_s}, {u"action_name"_s, u"continue"_s}, {u"action_type"_s, u"button"_s},
                 {u"button_id"_s, u"continue"_s}})},
        {OSTInternalEvent::actionTappedEventForSelectionGroup({u"plan"_s, u"yearly"_s, {}, {}}, screen),
         u"OST Email Action Tapped"_s, OSTActionTappedEvent,
         tapped({{u"action_id"_s, u""_s}, {u"action_name"_s, u"plan"_s}, {u"action_type"_s, u"selectionGroup"_s},
                 {u"button_id"_s, u"yearly"_s}, {u"button_value"_s, u""_s}})},
        {OSTInternalEvent::actionTappedEventForSwitch(screen), u"OST Email Action Tapped"_s, OSTActionTappedEvent,
         tapped({{u"action_id"_s, u""_s}, {u"action_name"_s, u"switchTap"_s}, {u"action_type"_s, u"switch"_s}})},
        {OSTInternalEvent::actionTappedEventForPickerReturn(screen), u"OST Email Action Tapped"_s,
         OSTActionTappedEvent,
         tapped({{u"action_id"_s, u"next"_s}, {u"action_name"_s, u"pickerReturn"_s}, {u"action_type"_s, u"picker"_s}})},
        {OSTInternalEvent::actionTappedEventForTextFieldReturn(screen), u"OST Email Action Tapped"_s,
         OSTActionTappedEvent,
         tapped({{u"action_id"_s, u"next"_s}, {u"action_name"_s, u"textFieldReturn"_s},
                 {u"action_type"_s, u"textField"_s}})},
        {OSTInternalEvent::actionTappedEventForTextFieldPINMatch(screen), u"OST Email Action Tapped"_s,
         OSTActionTappedEvent,
         tapped({{u"action_id"_s, u"next"_s}, {u"action_name"_s, u"pinMatch"_s}, {u"action_type"_s, u"textField"_s}})},
        {OSTInternalEvent::sessionStartedEvent(12.5, OSTInternalEvent::SessionKind::Launch), u"OST Session Start"_s,
         OSTSessionStartedEvent,
         {{u"session_foreground"_s, 0}, {u"session_launch"_s, true}, {u"ost_time_since_last_session"_s, u"12.500000"_s}}},
    };
    for (const Case &entry : cases) {
        SCOPED_TRACE(entry.name.toStdString());
        EXPECT_EQ(entry.event.name(), entry.name);
        EXPECT_EQ(entry.event.type(), entry.type);
        EXPECT_EQ(ownParameters(entry.event), entry.parameters);
        const QVariantMap userInfo = entry.event.userInfo();
        EXPECT_EQ(userInfo.value(OSTEventNotificationNameKey).toString(), entry.name);
        EXPECT_EQ(userInfo.value(OSTEventNotificationTypeKey).toString(), entry.type);
        EXPECT_EQ(userInfo.value(OSTEventNotificationParametersKey).toMap(), entry.event.parameters());
    }
}

TEST(EventModel, StatisticalEventsNameTheirKindAndResult)
{
    const QUrl url(u"http://127.0.0.1:1/images/a b.png"_s);
    struct Case {
        OSTStatisticalEvent event;
        QVariantMap parameters;
    };
    const Case cases[] = {
        {OSTStatisticalEvent::launchEvent(0.25, OSTStatisticalEvent::Success),
         {{u"event"_s, u"launch"_s}, {u"timing"_s, 0.25}, {u"type"_s, u"success"_s}}},
        {OSTStatisticalEvent::imageDownloadEvent(url, 1.5, OSTStatisticalEvent::Timeout),
         {{u"event"_s, u"image_download"_s}, {u"image_url"_s, u"http://127.0.0.1:1/images/a%20b.png"_s}, {u"timing"_s, 1.5},
          {u"type"_s, u"timeout"_s}}},
        {OSTStatisticalEvent::internalServerErrorEvent(url), {{u"event"_s, u"internal_server_error"_s}, {u"url"_s, u"http://127.0.0.1:1/images/a%20b.png"_s}}},
        {OSTStatisticalEvent::screenLoadEvent(0.5, OSTStatisticalEvent::Failure, OSTStatisticalEvent::Loading::Partial),
         {{u"event"_s, u"screen_load"_s}, {u"fully_loaded"_s, false}, {u"timing"_s, 0.5}, {u"type"_s, u"failure"_s}}},
        {OSTStatisticalEvent::screenLoadEvent(0.5, 0, OSTStatisticalEvent::Loading::Full),
         {{u"event"_s, u"screen_load"_s}, {u"fully_loaded"_s, true}, {u"timing"_s, 0.5}, {u"type"_s, u""_s}}},
        {OSTStatisticalEvent::sessionStartEvent(0.75), {{u"event"_s, u"session_started"_s}, {u"timing"_s, 0.75}}},
    };
    for (const Case &entry : cases) {
        EXPECT_EQ(entry.event.name(), u"$$OST Timing"_s);
        EXPECT_EQ(ownParameters(entry.event), entry.parameters);
    }
    EXPECT_EQ(OSTStatisticalEvent::stringForEventType(4), u""_s);
}

TEST(EventModel, TheEventsOwnIdentifierAndTypeReplaceTheHostsAndIdentifiersAreUnique)
{
    const OSTEvent first(u"purchase"_s, {{u"ost_event_id"_s, u"forged"_s}, {u"event_type"_s, u"other"_s}, {u"sku"_s, 7}});
    const OSTEvent second(u"purchase"_s);
    EXPECT_NE(first.parameters().value(u"ost_event_id"_s).toString(), u"forged"_s);
    EXPECT_EQ(first.parameters().value(u"event_type"_s).toString(), u"purchase"_s);
    EXPECT_EQ(first.parameters().value(u"sku"_s).toInt(), 7);
    EXPECT_NE(first.parameters().value(u"ost_event_id"_s), second.parameters().value(u"ost_event_id"_s));
}
