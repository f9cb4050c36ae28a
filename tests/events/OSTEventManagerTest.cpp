// The event queue end to end: the SDK is started through the public facade and sends to
// ostrel-devserver over loopback; the manual clock drives the 60-second flush and the retry waits,
// and the tests read what the service received and stored.

#include <ostrel/OSTEventEmitter.h>
#include <ostrel/OSTNotificationObservers.h>
#include <ostrel/Ostrel.h>

#include "core/OSTUserDefaultsManager.h"
#include "events/OSTEventHook.h"
#include "events/OSTEventJournal.h"
#include "events/OSTEventManager.h"
#include "events/OSTInternalEvent.h"
#include "platform/OSTApplication.h"
#include "platform/OSTNotificationCenter.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTTestSupport.h"

#include <QDateTime>
#include <QFile>
#include <QSignalSpy>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

class EventQueue : public ::testing::Test {
protected:
    void SetUp() override { OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Host); }

    // Starts the service with `faults`, points the main bundle at it and starts the SDK.
    void start(const QStringList &faults = {})
    {
        ASSERT_TRUE(server.start({.faults = faults}));
        server.installMainBundle(bundle.path(), {{u"OstrelToken"_s, u"test-token"_s},
                                                 {u"CFBundleIdentifier"_s, u"com.example.host"_s},
                                                 {u"CFBundleShortVersionString"_s, u"2.1"_s}});
        Ostrel::startWithToken(u"test-token"_s);
    }

    // Takes in the events and waits until the queue has seen them (and started its timer).
    static void track(int first, int count, const QString &name = u"host event"_s)
    {
        for (int sequence = first; sequence < first + count; ++sequence)
            Ostrel::trackEventWithName(name, {{u"sequence"_s, sequence}});
        manager().pendingEventCount();
    }

    QList<test::OSTRecordedRequest> eventRequests() const { return server.recordedRequests(u"event"_s); }

    template <typename Events>
    static QList<int> sequencesOf(const Events &events)
    {
        QList<int> sequences;
        for (const auto &event : events)
            sequences.append(QVariant(event).toMap().value(u"sequence"_s).toInt());
        return sequences;
    }

    // Moves time on until the service holds `count` events or the safety net gives up. Requests
    // time out on the same clock, so time moves only while none is on the wire, and in steps
    // shorter than the time-out (a request may just be starting when a step is taken).
    bool advanceUntilStored(int count)
    {
        constexpr double step = OSTEventManager::requestTimeout - 1.0;
        return test::waitUntil([&] {
            if (manager().sendingEventCount() == 0)
                clock.advance(step);
            return server.storedEventCount() >= count;
        }, 90000);
    }

    static OSTEventManager &manager() { return OSTEventManager::sharedManager(); }

    // The stored events the host tracked under `name`.
    QList<QVariantMap> storedEventsNamed(const QString &name)
    {
        QList<QVariantMap> named;
        for (const QVariantMap &event : server.storedEvents()) {
            if (event.value(u"event_type"_s) == name)
                named.append(event);
        }
        return named;
    }

    // A host value nested `depth` levels deep, tracked from a thread whose stack is deep enough
    // for the host to build and free it.
    static void trackNestedEvent(const QString &name, int depth)
    {
        const std::unique_ptr<QThread> host(QThread::create([name, depth] {
            QVariantMap nested{{u"leaf"_s, true}};
            for (int level = 1; level < depth; ++level)
                nested = QVariantMap{{u"nested"_s, nested}};
            Ostrel::trackEventWithName(name, nested);
        }));
        host->setStackSize(1024u * 1024u * 1024u);
        host->start();
        host->wait();
    }

    test::ManualClockScope clock;
    test::OSTDevServerProcess server;
    QTemporaryDir bundle;
};

} // namespace

TEST_F(EventQueue, HostEventsWithinAMinuteArriveAsOneBatchWithTokenAndTrackingParameters)
{
    start();
    track(1, 3);
    EXPECT_EQ(manager().pendingEventCount(), 3u);
    clock.advance(59.0);
    EXPECT_EQ(manager().pendingEventCount(), 3u) << "nothing goes before the minute is up";

    clock.advance(1.0);
    ASSERT_TRUE(test::waitUntil([&] { return eventRequests().size() == 1 && server.storedEventCount() == 3; }));
    const QVariantMap request = eventRequests().first().parameters;
    EXPECT_EQ(request.value(u"token"_s).toString(), u"test-token"_s);
    const QVariantList events = request.value(u"events"_s).toList();
    EXPECT_EQ(sequencesOf(events), (QList<int>{1, 2, 3}));
    const QVariantMap first = events.first().toMap();
    EXPECT_EQ(first.value(u"event_type"_s).toString(), u"host event"_s);
    EXPECT_EQ(first.value(u"app"_s).toString(), u"com.example.host"_s);
    EXPECT_EQ(first.value(u"app_version"_s).toString(), u"2.1"_s);
    EXPECT_EQ(first.value(u"system"_s).toString(), QSysInfo::productType() + u","_s + QSysInfo::productVersion());
    EXPECT_EQ(first.value(u"device_name"_s).toString(), QSysInfo::machineHostName());
    EXPECT_TRUE(first.contains(u"has_internet"_s));
    EXPECT_FALSE(first.contains(u"is_qa"_s));
    EXPECT_FALSE(first.contains(u"auto"_s));
}

TEST_F(EventQueue, AnInternalEventIsSentAtOnceAndAnnouncedToEveryKindOfObserver)
{
    start();
    QVariantMap centerObject;
    const OSTObserverToken centerToken = OSTNotificationCenter::defaultCenter().addObserver(
        OSTEventFiredNotification, [&](const OSTNotification &notification) {
            centerObject = *static_cast<const QVariantMap *>(notification.object);
        });
    QObject context;
    QVariantMap hostDictionary;
    const auto hostToken = OSTNotificationObservers::addObserver(
        OSTEventFiredNotification, &context, [&](const QString &, const QVariantMap &dictionary) { hostDictionary = dictionary; });
    QSignalSpy signal(OSTEventEmitter::sharedEmitter(), &OSTEventEmitter::eventFired);

    OSTEventHook::sendEvent(OSTInternalEvent::logoutEvent());

    ASSERT_TRUE(test::waitUntil([&] { return eventRequests().size() == 1 && !hostDictionary.isEmpty() && signal.size() == 1; }));
    const QVariantMap sent = eventRequests().first().parameters;
    EXPECT_EQ(sent.value(u"event_type"_s).toString(), u"OST Logout"_s);
    EXPECT_EQ(sent.value(u"auto"_s), QVariant(true));
    EXPECT_EQ(sent.value(u"token"_s).toString(), u"test-token"_s);
    EXPECT_FALSE(sent.contains(u"events"_s));

    EXPECT_EQ(centerObject.value(OSTEventNotificationNameKey).toString(), u"OST Logout"_s);
    EXPECT_EQ(centerObject.value(OSTEventNotificationTypeKey).toString(), OSTLogoutEvent);
    EXPECT_EQ(centerObject.value(OSTEventNotificationParametersKey).toMap().value(u"ost_event_id"_s),
              sent.value(u"ost_event_id"_s));
    EXPECT_EQ(hostDictionary, centerObject);
    EXPECT_EQ(signal.first().at(0).toString(), u"OST Logout"_s);
    EXPECT_EQ(signal.first().at(2).toString(), OSTLogoutEvent);

    OSTNotificationObservers::removeObserver(hostToken);
    OSTNotificationCenter::defaultCenter().removeObserver(centerToken);
}

TEST_F(EventQueue, AFailedBatchAndTwoNewEventsArriveLaterAsOneFlatList)
{
    start({u"event:status=503,times=1"_s});
    track(1, 1);
    clock.advance(60.0);
    ASSERT_TRUE(test::waitUntil([&] { return server.faults().isEmpty() && manager().pendingEventCount() == 1; }))
        << server.faults().size() << " " << manager().pendingEventCount() << " " << eventRequests().size();
    EXPECT_EQ(server.storedEventCount(), 0);

    track(2, 2);
    // The next attempt waits at least 48 s (a minute less a fifth).
    clock.advance(47.0);
    EXPECT_EQ(manager().pendingEventCount(), 3u);
    ASSERT_TRUE(advanceUntilStored(3));
    const QVariantMap last = server.recordedRequests(u"event"_s).last().parameters;
    EXPECT_EQ(sequencesOf(last.value(u"events"_s).toList()), (QList<int>{1, 2, 3}));
}

TEST_F(EventQueue, ABacklogOf2000GoesOutInFourRequestsOfAtMost500)
{
    start();
    track(0, 2000);
    clock.advance(60.0);
    ASSERT_TRUE(test::waitUntil([&] { return server.storedEventCount() == 2000; }, 60000));
    const QList<test::OSTRecordedRequest> requests = eventRequests();
    ASSERT_EQ(requests.size(), 4);
    QList<int> sequences;
    for (const test::OSTRecordedRequest &request : requests) {
        const QVariantList events = request.parameters.value(u"events"_s).toList();
        EXPECT_LE(events.size(), 500);
        sequences += sequencesOf(events);
    }
    QList<int> expected(2000);
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_EQ(sequences, expected);
}

TEST_F(EventQueue, OnlyTheFirstConfirmedSessionStartYieldsASessionStartedTiming)
{
    start();
    OSTEventHook::sendEvent(OSTInternalEvent::sessionStartedEvent(0.0, OSTInternalEvent::SessionKind::Launch));
    OSTEventHook::sendEvent(OSTInternalEvent::sessionStartedEvent(950.0, OSTInternalEvent::SessionKind::Foreground));
    ASSERT_TRUE(test::waitUntil([&] { return server.storedEventCount() == 2 && manager().pendingEventCount() == 1; }));
    clock.advance(60.0);
    ASSERT_TRUE(test::waitUntil([&] { return server.storedEventCount() == 3; }));
    const QList<QVariantMap> stored = server.storedEvents();
    const auto timings = std::count_if(stored.begin(), stored.end(), [](const QVariantMap &event) {
        return event.value(u"event_type"_s) == u"$$OST Timing"_s && event.value(u"event"_s) == u"session_started"_s;
    });
    EXPECT_EQ(timings, 1);
    EXPECT_EQ(server.recordedRequests(u"event"_s).last().parameters.value(u"events"_s).toList().size(), 1);
}

TEST_F(EventQueue, WithHalfTheRequestsFailingAll10000EventsArrive)
{
    start({u"event:status=503,share=0.5"_s});
    track(0, 10000);
    ASSERT_TRUE(advanceUntilStored(10000)) << server.standardError().left(2000).toStdString() << server.storedEventCount() << " stored after " << eventRequests().size()
                                           << " requests; " << manager().pendingEventCount() << " pending";
    EXPECT_EQ(server.storedEventCount(), 10000);
    EXPECT_GT(eventRequests().size(), 20) << "failures were retried";
    EXPECT_EQ(manager().pendingEventCount(), 0u);
}

TEST_F(EventQueue, GarbageAnswersAndDroppedConnectionsLoseNothing)
{
    start({u"event:body=garbage,times=1"_s});
    ASSERT_TRUE(server.setFault({{u"endpoint"_s, u"event"_s}, {u"connection"_s, u"drop"_s}, {u"times"_s, 1}}));
    track(0, 5);
    ASSERT_TRUE(advanceUntilStored(5));
    EXPECT_EQ(server.storedEventCount(), 5);
}

TEST_F(EventQueue, EventsStoredByAnEarlierRunAndTheOldArchiveAreSentAfterAStart)
{
    {
        OSTEventJournal journal(OSTEventJournal::standardJournalPath());
        std::vector<OSTEventJournal::Record> records{{0, OSTEventJournal::Kind::Queued, R"({"ost_event_id":"J1","sequence":1})"},
                                                     {0, OSTEventJournal::Kind::Queued, R"({"ost_event_id":"J9","seq)"},
                                                     {0, OSTEventJournal::Kind::Internal, R"({"ost_event_id":"J2","sequence":2})"}};
        ASSERT_TRUE(journal.append(records));
    }
    OSTUserDefaultsManager::sharedManager().setObject(
        QVariantMap{{u"events"_s, QVariantList{QVariantMap{{u"ost_event_id"_s, u"A1"_s}, {u"sequence"_s, 0}}}}},
        OSTEventManager::archivedRequestsKey);
    Ostrel::setLoggingLevel(1);
    const QString errors = test::captureStandardError([&] { start(); });
    EXPECT_TRUE(errors.contains(u"Ostrel Error:"_s) && errors.contains(u"J9"_s)) << "the corrupt row is named"
                                                                                   << errors.toStdString();
    EXPECT_EQ(manager().pendingEventCount(), 3u);
    EXPECT_FALSE(OSTUserDefaultsManager::sharedManager().objectForKey(OSTEventManager::archivedRequestsKey).isValid());
    Ostrel::flushEvents();
    ASSERT_TRUE(test::waitUntil([&] { return server.storedEventCount() == 3; }));
    EXPECT_EQ(sequencesOf(eventRequests().first().parameters.value(u"events"_s).toList()), (QList<int>{1, 2, 0}));
    EXPECT_TRUE(test::waitUntil([] { return OSTEventJournal(OSTEventJournal::standardJournalPath()).loadAll().empty(); }));
}

TEST_F(EventQueue, EventsNoRequestCanCarryOrTheServiceRefusesDoNotHoldBackTheOthers)
{
    // A service that refuses every request over 64 KB: smaller than the SDK's own limit, so that
    // the refusals cost little real work (each split sends the large event again).
    start({u"event:status=413,larger_than=65536"_s});
    Ostrel::setLoggingLevel(2);
    const QString intake = test::captureStandardError([&] {
        Ostrel::trackEventWithName(u"huge"_s, {{u"text"_s, QString(3 * 1024 * 1024, u'x')}});
        trackNestedEvent(u"deep"_s, 100000);
        // Fits a request of the SDK's own, but not one of this service.
        Ostrel::trackEventWithName(u"large"_s, {{u"text"_s, QString(100 * 1024, u'y')}});
        track(1, 30);
    });
    EXPECT_TRUE(intake.contains(u"\"huge\" is "_s) && intake.contains(u"\"deep\" nests"_s)) << intake.toStdString();
    EXPECT_EQ(manager().pendingEventCount(), 31u) << "huge and deep were refused at intake";

    clock.advance(OSTEventManager::flushInterval);
    // One flush interval of SDK time; the real-time limit is only a safety net for the requests
    // the splits send one after the other (slow under the sanitizers on busy cores).
    ASSERT_TRUE(test::waitUntil([&] { return storedEventsNamed(u"host event"_s).size() == 30; }, 90000))
        << server.storedEventCount() << " stored, " << manager().pendingEventCount() << " waiting, "
        << manager().sendingEventCount() << " on the wire";
    QList<int> expected(30);
    std::iota(expected.begin(), expected.end(), 1);
    EXPECT_EQ(sequencesOf(storedEventsNamed(u"host event"_s)), expected);

    // Refused alone at the next flushes too, it is dropped with an error and a statistic.
    const QString dropped = test::captureStandardError([&] {
        ASSERT_TRUE(test::waitUntil([&] {
            if (manager().sendingEventCount() == 0)
                clock.advance(OSTEventManager::requestTimeout - 1.0);
            return !storedEventsNamed(u"$$OST Timing"_s).isEmpty();
        }, 60000));
    });
    EXPECT_TRUE(dropped.contains(u"Ostrel Error:"_s) && dropped.contains(u"\"large\""_s)
                && dropped.contains(u"dropped"_s)) << dropped.toStdString();
    const QVariantMap statistic = storedEventsNamed(u"$$OST Timing"_s).first();
    EXPECT_EQ(statistic.value(u"event"_s).toString(), u"event_refused"_s);
    EXPECT_EQ(statistic.value(u"event_name"_s).toString(), u"large"_s);
    EXPECT_EQ(statistic.value(u"status"_s).toInt(), 413);
    EXPECT_TRUE(storedEventsNamed(u"large"_s).isEmpty());
    EXPECT_TRUE(test::waitUntil([] { return OSTEventJournal(OSTEventJournal::standardJournalPath()).loadAll().empty(); }));
}

TEST_F(EventQueue, ADamagedJournalIsMovedAsideWithAnErrorAndEventsStillFlow)
{
    const QString path = OSTEventJournal::standardJournalPath();
    test::writeFile(path, QByteArray(8192, '\x33'));
    Ostrel::setLoggingLevel(1);
    const QString errors = test::captureStandardError([&] { start(); });
    EXPECT_TRUE(errors.contains(u"Ostrel Error:"_s) && errors.contains(u"moved to"_s)) << errors.toStdString();
    track(0, 2);
    Ostrel::flushEvents();
    ASSERT_TRUE(test::waitUntil([&] { return server.storedEventCount() == 2; }));
}

TEST_F(EventQueue, HostParametersThatAreNotJSONAreLeftOutWithOneWarning)
{
    start();
    Ostrel::setLoggingLevel(2);
    QObject widget;
    const QString warnings = test::captureStandardError([&] {
        Ostrel::trackEventWithName(u"odd"_s, {{u"kept"_s, 1},
                                              {u"pointer"_s, QVariant::fromValue(&widget)},
                                              {u"date"_s, QDateTime::currentDateTimeUtc()}});
    });
    EXPECT_EQ(warnings.count(u"Ostrel Warning:"_s), 1) << warnings.toStdString();
    EXPECT_TRUE(warnings.contains(u"date"_s) && warnings.contains(u"pointer"_s));
    Ostrel::flushEvents();
    ASSERT_TRUE(test::waitUntil([&] { return server.storedEventCount() == 1; }));
    const QVariantMap stored = server.storedEvents().first();
    EXPECT_EQ(stored.value(u"kept"_s).toInt(), 1);
    EXPECT_FALSE(stored.contains(u"pointer"_s) || stored.contains(u"date"_s));
}

TEST_F(EventQueue, BeyondTenThousandStoredTheOldestAreDroppedWithOneWarning)
{
    start();
    Ostrel::setLoggingLevel(2);
    track(0, 10050);
    const QString warnings = test::captureStandardError([&] {
        Ostrel::flushEvents();
        manager().pendingEventCount();
    });
    EXPECT_EQ(warnings.count(u"were dropped"_s), 1) << warnings.toStdString();
    EXPECT_TRUE(warnings.contains(u"50 of the oldest"_s)) << warnings.toStdString();
    ASSERT_TRUE(test::waitUntil([&] { return server.storedEventCount() == 10000; }, 60000));
    EXPECT_EQ(sequencesOf(eventRequests().first().parameters.value(u"events"_s).toList()).first(), 50);
}

TEST_F(EventQueue, TurnedOffNothingIsStoredOrSentButInternalEventsAreStillAnnounced)
{
    start();
    track(0, 2);
    Ostrel::setEventsEnabled(false);
    EXPECT_TRUE(OSTEventJournal(OSTEventJournal::standardJournalPath()).loadAll().empty());
    EXPECT_FALSE(OSTUserDefaultsManager::sharedManager().boolForKey(OSTEventManager::eventsEnabledKey));

    int announced = 0;
    const OSTObserverToken token = OSTNotificationCenter::defaultCenter().addObserver(
        OSTEventFiredNotification, [&](const OSTNotification &) { ++announced; });
    track(2, 2);
    OSTEventHook::sendEvent(OSTInternalEvent::logoutEvent());
    EXPECT_EQ(announced, 1);
    EXPECT_EQ(manager().pendingEventCount(), 0u);
    EXPECT_TRUE(OSTEventJournal(OSTEventJournal::standardJournalPath()).loadAll().empty());
    clock.advance(600.0);
    Ostrel::flushEvents();
    manager().pendingEventCount();
    EXPECT_TRUE(eventRequests().isEmpty());

    Ostrel::setEventsEnabled(true);
    EXPECT_TRUE(Ostrel::eventsEnabled());
    track(4, 1);
    Ostrel::flushEvents();
    ASSERT_TRUE(test::waitUntil([&] { return server.storedEventCount() == 1; }));
    EXPECT_EQ(sequencesOf(QList<QVariantMap>{server.storedEvents().first()}), (QList<int>{4}));
    OSTNotificationCenter::defaultCenter().removeObserver(token);
}

TEST_F(EventQueue, EnteringTheBackgroundFlushesAtOnceEvenWhileWaitingToRetry)
{
    start({u"event:status=503,times=1"_s});
    track(0, 1);
    clock.advance(60.0);
    ASSERT_TRUE(test::waitUntil([&] { return server.faults().isEmpty() && manager().pendingEventCount() == 1; }));
    OSTApplication::sharedApplication().becomeActive();
    OSTApplication::sharedApplication().enterBackground();
    ASSERT_TRUE(test::waitUntil([&] { return server.storedEventCount() == 1; }));
}

TEST_F(EventQueue, QAInstallationsMarkTheirEvents)
{
    start();
    manager().processLaunchResponse(QVariantMap{{u"is_qa"_s, true}});
    track(0, 1);
    manager().processLaunchResponse(std::nullopt);
    Ostrel::flushEvents();
    ASSERT_TRUE(test::waitUntil([&] { return server.storedEventCount() == 1; }));
    EXPECT_EQ(server.storedEvents().first().value(u"is_qa"_s), QVariant(true));
    EXPECT_TRUE(manager().isQA());

    // The service's value read as a boolean, whatever its JSON type.
    const std::pair<QVariant, bool> readings[] = {{u"1"_s, true}, {u"true"_s, true}, {u"0"_s, false},
                                                  {u"no"_s, false}, {1, true}, {0.0, false},
                                                  {false, false}, {QVariantList{}, false}};
    for (const auto &[value, qa] : readings) {
        manager().processLaunchResponse(QVariantMap{{u"is_qa"_s, value}});
        EXPECT_EQ(manager().isQA(), qa) << value.toString().toStdString();
    }
}
