#include "ExpectedEvents.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace ostrel::demo;

namespace {

ExpectedEvents threeSteps()
{
    return ExpectedEvents({
        {u"OST Install Flow Start"_s, {{u"flow_key"_s, u"install"_s}}},
        {u"OST Welcome Displayed"_s, {{u"experience_key"_s, u"welcome"_s}}},
        {u"OST Signup"_s, {}},
    });
}

StoredEvent milestone(qint64 id, const QString &type, QVariantMap parameters = {})
{
    parameters.insert(u"auto"_s, true);
    return StoredEvent{id, type, parameters};
}

QList<StoredEvent> walked()
{
    return {milestone(1, u"OST Install Flow Start"_s, {{u"flow_key"_s, u"install"_s}}),
            milestone(2, u"OST Welcome Displayed"_s, {{u"experience_key"_s, u"welcome"_s}, {u"extra"_s, 1}}),
            milestone(3, u"OST Signup"_s)};
}

} // namespace

TEST(ExpectedEvents, TheExactMilestonesInOrderPassAndOtherEventsAreNotMilestones)
{
    QList<StoredEvent> events = walked();
    events.insert(1, StoredEvent{7, u"$$OST Timing"_s, {{u"auto"_s, true}, {u"event"_s, u"launch"_s}}});
    events.append(StoredEvent{8, u"host event"_s, {}});
    EXPECT_EQ(threeSteps().firstDifference(events), QString());
}

TEST(ExpectedEvents, EachKindOfDeviationIsReported)
{
    const struct {
        const char *what;
        std::function<void(QList<StoredEvent> &)> change;
        QString difference;
    } cases[] = {
        {"missing", [](QList<StoredEvent> &events) { events.removeLast(); },
         u"event 3 missing: expected OST Signup {}"_s},
        {"out of order", [](QList<StoredEvent> &events) { events.swapItemsAt(0, 1); },
         u"event 1 is #2 OST Welcome Displayed  (experience_key=welcome), expected OST Install Flow Start "
         "{\"flow_key\":\"install\"}"_s},
        {"extra", [](QList<StoredEvent> &events) { events.append(milestone(4, u"OST Login"_s)); },
         u"unexpected event 4: #4 OST Login"_s},
        {"wrong parameter",
         [](QList<StoredEvent> &events) { events[0].parameters.insert(u"flow_key"_s, u"login"_s); },
         u"event 1 (#1 OST Install Flow Start  (flow_key=login)): \"flow_key\" is login, expected install"_s},
        {"absent parameter", [](QList<StoredEvent> &events) { events[1].parameters.remove(u"experience_key"_s); },
         u"event 2 (#2 OST Welcome Displayed): has no \"experience_key\""_s},
    };
    for (const auto &deviation : cases) {
        QList<StoredEvent> events = walked();
        deviation.change(events);
        EXPECT_EQ(threeSteps().firstDifference(events), deviation.difference) << deviation.what;
    }
}
