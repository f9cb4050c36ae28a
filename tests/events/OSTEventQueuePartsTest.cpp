// The pieces of the event queue that need no service: request assembly from stored texts, the
// retry delays, and the journal on disk.

#include "events/OSTEventJournal.h"
#include "events/OSTEventRequestBuilder.h"
#include "events/OSTEventRetryPolicy.h"
#include "support/OSTTestSupport.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <deque>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

using Record = OSTEventJournal::Record;

Record recordOfSize(qint64 id, qsizetype bytes)
{
    const QByteArray filler(std::max<qsizetype>(0, bytes - 12), 'x');
    return {id, OSTEventJournal::Kind::Queued, "{\"f\":\"" + filler + "\"}"};
}

QJsonObject parsed(const QByteArray &json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << json.left(200).toStdString();
    return document.object();
}

} // namespace

TEST(EventRequests, BatchesStopAt500EventsOr1MBButNeverSendNothing)
{
    std::deque<Record> small;
    for (int index = 0; index < 1200; ++index)
        small.push_back(recordOfSize(index + 1, 100));
    EXPECT_EQ(OSTEventRequestBuilder::batchSize(small), 500u);

    std::deque<Record> large;
    for (int index = 0; index < 10; ++index)
        large.push_back(recordOfSize(index + 1, 300 * 1024));
    const size_t fitting = OSTEventRequestBuilder::batchSize(large);
    EXPECT_EQ(fitting, 3u);
    EXPECT_LE(OSTEventRequestBuilder::batchParameters(large, fitting, u"t"_s).size(),
              OSTEventRequestBuilder::maximumBytesPerRequest);

    const std::deque<Record> oversized{recordOfSize(1, 2 * 1024 * 1024), recordOfSize(2, 10)};
    EXPECT_EQ(OSTEventRequestBuilder::batchSize(oversized), 1u);
    EXPECT_EQ(OSTEventRequestBuilder::batchSize({}), 0u);
}

TEST(EventRequests, AssembledRequestsAreValidJSONWithTheEventsInOrderAndTheToken)
{
    const std::deque<Record> pending{{1, OSTEventJournal::Kind::Queued, R"({"n":1,"s":"a\"b"})"},
                                     {2, OSTEventJournal::Kind::Internal, R"({"n":2})"},
                                     {3, OSTEventJournal::Kind::Queued, R"({"n":3})"}};
    const QJsonObject batch = parsed(OSTEventRequestBuilder::batchParameters(pending, 2, u"to\"ken"_s));
    EXPECT_EQ(batch.value(u"token"_s).toString(), u"to\"ken"_s);
    const QJsonArray events = batch.value(u"events"_s).toArray();
    ASSERT_EQ(events.size(), 2);
    EXPECT_EQ(events.at(0).toObject().value(u"s"_s).toString(), u"a\"b"_s);
    EXPECT_EQ(events.at(1).toObject().value(u"n"_s).toInt(), 2);
    EXPECT_FALSE(parsed(OSTEventRequestBuilder::batchParameters(pending, 1, std::nullopt)).contains(u"token"_s));

    const QJsonObject single = parsed(OSTEventRequestBuilder::singleParameters(R"({"n":1})", u"tok"_s));
    EXPECT_EQ(single, QJsonObject({{u"n"_s, 1}, {u"token"_s, u"tok"_s}}));
    EXPECT_EQ(parsed(OSTEventRequestBuilder::singleParameters("{}", u"tok"_s)), QJsonObject({{u"token"_s, u"tok"_s}}));
    EXPECT_EQ(OSTEventRequestBuilder::singleParameters(R"({"n":1})", std::nullopt), R"({"n":1})");
    // An event that carries a token of its own (from the device fingerprint) names it once.
    const QByteArray replaced = OSTEventRequestBuilder::singleParameters(R"({"token":"old","n":1})", u"tok"_s);
    EXPECT_EQ(replaced.count("\"token\""), 1) << replaced.toStdString();
    EXPECT_EQ(parsed(replaced), QJsonObject({{u"n"_s, 1}, {u"token"_s, u"tok"_s}}));
}

TEST(EventRetries, WaitsDoubleFromAMinuteToTenMinutesWithinTwentyPercentAndSuccessStartsOver)
{
    for (const double draw : {0.0, 0.5, 0.999999}) {
        OSTEventRetryPolicy policy([draw] { return draw; });
        const double factor = 0.8 + 0.4 * draw;
        for (const double base : {60.0, 120.0, 240.0, 480.0, 600.0, 600.0})
            EXPECT_NEAR(policy.delayAfterFailure(), base * factor, 1e-6) << draw;
        policy.reset();
        EXPECT_NEAR(policy.delayAfterFailure(), 60.0 * factor, 1e-6);
    }
    OSTEventRetryPolicy random;
    for (int attempt = 0; attempt < 200; ++attempt) {
        const double delay = random.delayAfterFailure();
        EXPECT_GE(delay, 48.0);
        EXPECT_LE(delay, 720.0);
    }
}

TEST(EventJournal, KeepsEventsInOrderAcrossReopeningAndRemovesOnlyWhatItIsTold)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"events.sqlite"_s);
    std::vector<Record> records{{0, OSTEventJournal::Kind::Queued, R"({"n":1})"},
                                {0, OSTEventJournal::Kind::Internal, R"({"n":2})"},
                                {0, OSTEventJournal::Kind::Queued, R"({"n":3})"}};
    {
        OSTEventJournal journal(path);
        ASSERT_TRUE(journal.append(records));
        EXPECT_LT(records[0].id, records[1].id);
        EXPECT_LT(records[1].id, records[2].id);
        EXPECT_TRUE(journal.remove({records[1].id}));
    }
    OSTEventJournal reopened(path);
    const std::vector<Record> stored = reopened.loadAll();
    ASSERT_EQ(stored.size(), 2u);
    EXPECT_EQ(stored[0].json, R"({"n":1})");
    EXPECT_EQ(stored[1].json, R"({"n":3})");
    EXPECT_EQ(stored[1].kind, OSTEventJournal::Kind::Queued);
    EXPECT_TRUE(reopened.takeProblems().isEmpty());
    EXPECT_TRUE(reopened.removeAll());
    EXPECT_TRUE(reopened.loadAll().empty());
}

TEST(EventJournal, ADamagedFileIsMovedAsideAndTheJournalStartsEmpty)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"events.sqlite"_s);
    test::writeFile(path, QByteArray(8192, '\x5a'));

    OSTEventJournal journal(path);
    EXPECT_TRUE(journal.isOpen());
    EXPECT_TRUE(journal.loadAll().empty());
    const QStringList problems = journal.takeProblems();
    ASSERT_EQ(problems.size(), 1);
    EXPECT_TRUE(problems.first().contains(u"moved to"_s)) << problems.first().toStdString();
    EXPECT_EQ(QDir(folder.path()).entryList({u"events.sqlite.corrupt-*"_s}).size(), 1);

    std::vector<Record> records{{0, OSTEventJournal::Kind::Queued, "{}"}};
    EXPECT_TRUE(journal.append(records));
}

TEST(EventJournal, AnUnwritableFolderFailsQuietlyWithAProblem)
{
    OSTEventJournal journal(u"/proc/ostrel-no-such-place/events.sqlite"_s);
    EXPECT_FALSE(journal.isOpen());
    std::vector<Record> records{{0, OSTEventJournal::Kind::Queued, "{}"}};
    EXPECT_FALSE(journal.append(records));
    EXPECT_EQ(records[0].id, 0);
    EXPECT_FALSE(journal.takeProblems().isEmpty());
}
