// The experience document's screens and flows as the events fired for them see them.

#include "events/OSTInternalEvent.h"
#include "experience/OSTFlow.h"
#include "experience/OSTScreen.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

TEST(DocumentEvents, ScreenAndFlowEventsCarryTheDocumentsKeysNamesAndTracking)
{
    const auto flow = std::make_shared<OSTFlow>(u"Signup"_s,
        QVariantMap{{u"name"_s, u"Sign Up"_s}, {u"steps"_s, QVariantList{u"Email"_s}}, {u"segment_name"_s, u"new"_s}},
        OSTDocumentOrigin::Server);
    const auto screen = std::make_shared<OSTScreen>(u"Email"_s,
        QVariantMap{{u"experience_name"_s, u"Email"_s}, {u"screen_name"_s, u"email-b"_s}}, OSTDocumentOrigin::Server);

    // Outside every flow, a sign-up names no flow or screen.
    EXPECT_FALSE(OSTInternalEvent::signupEvent(screen.get()).parameters().contains(u"flow_key"_s));

    screen->setFlow(flow);
    const QVariantMap signup = OSTInternalEvent::signupEvent(screen.get()).parameters();
    EXPECT_EQ(signup.value(u"flow_key"_s), u"Signup"_s);
    EXPECT_EQ(signup.value(u"screen_key"_s), u"Email"_s);

    const QVariantMap started = OSTInternalEvent::flowStartedEvent(*flow).parameters();
    EXPECT_EQ(started.value(u"segment_name"_s), u"new"_s);
    const QVariantMap displayed = OSTInternalEvent::screenDisplayedEvent(*screen).parameters();
    EXPECT_EQ(displayed.value(u"screen_name"_s), u"email-b"_s);
}

} // namespace
} // namespace ostrel
