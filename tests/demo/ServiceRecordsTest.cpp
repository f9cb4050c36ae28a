#include "DemoOptions.h"
#include "HostMeasurement.h"
#include "ServiceEventLog.h"
#include "VerificationPINReader.h"

#include "support/OSTTestSupport.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace ostrel::demo;

namespace {

// The development service's events table, filled with rows in arrival order.
void writeEvents(const QString &path, const QList<std::pair<QString, QString>> &typesAndTimestamps)
{
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"writer"_s);
        database.setDatabaseName(path);
        ASSERT_TRUE(database.open());
        QSqlQuery query(database);
        ASSERT_TRUE(query.exec(u"CREATE TABLE events (id INTEGER PRIMARY KEY AUTOINCREMENT, ost_event_id TEXT UNIQUE, "
                               "event_type TEXT, parameters TEXT NOT NULL, received_at REAL NOT NULL)"_s));
        for (const auto &[type, timestamp] : typesAndTimestamps) {
            query.prepare(u"INSERT INTO events (event_type, parameters, received_at) VALUES (?, ?, 0)"_s);
            query.addBindValue(type);
            query.addBindValue(u"{\"auto\": true, \"device_timestamp\": \"%1\"}"_s.arg(timestamp));
            ASSERT_TRUE(query.exec());
        }
    }
    QSqlDatabase::removeDatabase(u"writer"_s);
}

} // namespace

TEST(ServiceEventLog, ReadsEventsInTheOrderTheSDKRecordedThemNotTheOrderTheyArrived)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"service.sqlite"_s);
    writeEvents(path, {{u"second"_s, u"2026-01-01 10:00:00.000200"_s},
                       {u"first"_s, u"2026-01-01 10:00:00.000100"_s},
                       {u"third (same time, arrived later)"_s, u"2026-01-01 10:00:00.000200"_s}});

    QString error;
    const auto events = ServiceEventLog(path).read(error);
    ASSERT_TRUE(events) << error.toStdString();
    ASSERT_EQ(events->size(), 3);
    EXPECT_EQ(events->at(0).eventType, u"first"_s);
    EXPECT_EQ(events->at(1).eventType, u"second"_s);
    EXPECT_EQ(events->at(2).eventType, u"third (same time, arrived later)"_s);
    EXPECT_TRUE(events->at(0).isMilestone());
}

TEST(ServiceEventLog, ADatabaseThatCannotBeReadIsAnErrorNotAnEmptyList)
{
    QTemporaryDir folder;
    QString error;
    EXPECT_FALSE(ServiceEventLog(folder.filePath(u"missing.sqlite"_s)).read(error));
    EXPECT_FALSE(error.isEmpty());
}

TEST(VerificationPINReader, TakesTheLastWellFormedPINLine)
{
    const struct {
        QString output;
        std::optional<QString> pin;
    } cases[] = {
        {u"certificate: MII\nport: 1\nready\n"_s, std::nullopt},
        {u"ready\npin: 447700900123 0042\n"_s, u"0042"_s},
        {u"pin: 1 1111\nevent stored\npin: 2 2222\n"_s, u"2222"_s},
        {u"pin: 2 2222\npin: 3 12345\npin: 4\n"_s, u"2222"_s},
    };
    for (const auto &sample : cases) {
        const auto verification = VerificationPINReader::lastVerificationIn(sample.output);
        ASSERT_EQ(verification.has_value(), sample.pin.has_value()) << sample.output.toStdString();
        if (verification) {
            EXPECT_EQ(verification->pin, *sample.pin);
        }
    }

    QTemporaryDir folder;
    const QString path = folder.filePath(u"devserver.out"_s);
    const VerificationPINReader reader(path);
    EXPECT_FALSE(reader.lastVerification()) << "no output yet";
    ostrel::test::writeFile(path, "ready\npin: 447700900123 0815\n");
    const auto verification = reader.lastVerification();
    ASSERT_TRUE(verification);
    EXPECT_EQ(verification->phoneNumber, u"447700900123"_s);
    EXPECT_EQ(verification->pin, u"0815"_s);
}

TEST(DemoOptions, AutoplayNeedsItsFoldersAndLimitsArePositive)
{
    const QStringList autoplay = {u"ostrel-demo"_s, u"--autoplay"_s, u"--screens"_s, u"s"_s, u"--service-output"_s,
                                  u"o"_s, u"--service-database"_s, u"d"_s};
    QString error;
    const auto options = DemoOptions::parse(autoplay + QStringList{u"--time-limit"_s, u"20"_s}, error);
    ASSERT_TRUE(options) << error.toStdString();
    EXPECT_TRUE(options->autoplay);
    EXPECT_EQ(options->timeLimit, std::chrono::seconds(20));

    const QStringList refused[] = {
        {u"ostrel-demo"_s, u"--autoplay"_s},
        autoplay + QStringList{u"--time-limit"_s, u"0"_s},
        autoplay + QStringList{u"--answer-delay"_s, u"soon"_s},
        {u"ostrel-demo"_s, u"--no-such-option"_s},
        autoplay + QStringList{u"--measure"_s},
    };
    for (const QStringList &arguments : refused) {
        error.clear();
        EXPECT_FALSE(DemoOptions::parse(arguments, error)) << arguments.join(u' ').toStdString();
        EXPECT_FALSE(error.isEmpty());
    }
}

TEST(HostMeasurement, ReadsPrivateDirtyAndResidentMemoryFromTheRollup)
{
    const QString rollup = u"55ad811a4000-7ffff3785000 ---p 00000000 00:00 0 [rollup]\n"
                           "Rss:                1752 kB\nPss:                 212 kB\nPss_Dirty:           112 kB\n"
                           "Shared_Dirty:          0 kB\nPrivate_Clean:        40 kB\nPrivate_Dirty:       96 kB\n"_s;
    const auto usage = HostMeasurement::memoryUsageIn(rollup);
    ASSERT_TRUE(usage);
    EXPECT_EQ(usage->privateDirtyKilobytes, 96) << "not Pss_Dirty, which comes first";
    EXPECT_EQ(usage->residentKilobytes, 1752);
    EXPECT_FALSE(HostMeasurement::memoryUsageIn(u"Rss: 1752 kB\n"_s)) << "no private dirty line";

    const auto own = HostMeasurement::currentMemoryUsage();
    ASSERT_TRUE(own);
    EXPECT_GT(own->residentKilobytes, own->privateDirtyKilobytes);
}
