#include "core/OSTUserDefaultsManager.h"

#include "platform/OSTApplication.h"
#include "platform/OSTDefaultsStore.h"
#include "platform/OSTNotificationCenter.h"
#include "support/OSTChildProcess.h"
#include "support/OSTTestSupport.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QProcess>
#include <QPoint>
#include <QSize>
#include <QTemporaryDir>
#include <QTimeZone>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <thread>
#include <vector>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

const QString domain = OSTUserDefaultsManager::domainName;

// Child process: writes one value, reports it on standard output, then waits to be killed.
const bool writerChildRegistered = test::OSTChildProcess::registerMode(u"write-then-wait"_s, [](const QStringList &arguments) {
    OSTDefaultsStore store(arguments.last());
    OSTUserDefaultsManager manager(store, domain);
    manager.setObject(u"survives"_s, u"crashKey"_s);
    std::printf("written\n");
    std::fflush(stdout);
    for (;;)
        std::this_thread::sleep_for(std::chrono::seconds(1));
    return 0;
});

// Each test's own store file.
class UserDefaultsManager : public ::testing::Test {
protected:
    QTemporaryDir folder;
    const QString path = folder.filePath(u"store.sqlite"_s);
};

} // namespace

TEST_F(UserDefaultsManager, ValuesAreWrittenThroughAndReadBackByANewManagerAsTheirOwnTypesOrAsBooleans)
{
    const QDateTime when = QDateTime::fromSecsSinceEpoch(1700000000, Qt::UTC);
    {
        OSTDefaultsStore store(path);
        OSTUserDefaultsManager manager(store, domain);
        manager.setObject(u"text"_s, u"string"_s);
        manager.setBool(true, u"launchedLifetime"_s);
        manager.setNumber(812345678.25, u"session_delay_start"_s);
        manager.setObject(QVariantMap{{u"events"_s, QVariantList{QVariantMap{{u"a"_s, 1}}}}}, u"archive"_s);
        manager.setObject(QByteArray("\x00\x01", 2), u"data"_s);
        manager.setObject(when, u"date"_s);
        manager.setObject(u"gone"_s, u"removed"_s);
        manager.setObject(QVariant(), u"removed"_s);
        manager.setObject(u"also gone"_s, u"removedToo"_s);
        manager.removeObjectForKey(u"removedToo"_s);
        manager.setNumber(0, u"zero"_s);
        manager.setObject(u"YES"_s, u"yesText"_s);
        manager.setObject(u"no"_s, u"noText"_s);
        manager.setObject(QVariantList{1}, u"list"_s);
    }
    OSTDefaultsStore store(path);
    OSTUserDefaultsManager manager(store, domain);
    EXPECT_EQ(manager.objectForKey(u"string"_s), u"text"_s);
    EXPECT_TRUE(manager.boolForKey(u"launchedLifetime"_s));
    EXPECT_EQ(manager.numberForKey(u"session_delay_start"_s).toDouble(), 812345678.25);
    EXPECT_EQ(manager.objectForKey(u"archive"_s).toMap().value(u"events"_s).toList().size(), 1);
    EXPECT_EQ(manager.objectForKey(u"data"_s).toByteArray(), QByteArray("\x00\x01", 2));
    EXPECT_EQ(manager.objectForKey(u"date"_s).toDateTime(), when);
    EXPECT_FALSE(manager.objectForKey(u"removed"_s).isValid());
    EXPECT_FALSE(manager.objectForKey(u"removedToo"_s).isValid());
    EXPECT_FALSE(manager.boolForKey(u"absent"_s));
    EXPECT_TRUE(manager.boolForKey(u"session_delay_start"_s));
    EXPECT_FALSE(manager.boolForKey(u"zero"_s));
    EXPECT_TRUE(manager.boolForKey(u"yesText"_s));
    EXPECT_FALSE(manager.boolForKey(u"noText"_s));
    EXPECT_FALSE(manager.boolForKey(u"list"_s));
}

TEST_F(UserDefaultsManager, NonPropertyListValuesAreRefusedWithAWarning)
{
    OSTDefaultsStore store(path);
    OSTUserDefaultsManager manager(store, domain);
    manager.setObject(u"kept"_s, u"key"_s);
    const QString log = test::captureStandardError([&] {
        manager.setObject(QVariant::fromValue(QPoint(1, 2)), u"key"_s);
        manager.setObject(QVariantMap{{u"nested"_s, QVariant::fromValue(QSize(1, 1))}}, u"other"_s);
    });
    EXPECT_TRUE(log.contains(u"Ostrel Warning: Refusing to store a value of type QPoint under \"key\""_s))
        << log.toStdString();
    EXPECT_EQ(manager.objectForKey(u"key"_s), u"kept"_s);
    EXPECT_FALSE(manager.objectForKey(u"other"_s).isValid());
}

TEST_F(UserDefaultsManager, ResetEmptiesMemoryAndTheNextChangeRewritesTheDomain)
{
    {
        OSTDefaultsStore store(path);
        OSTUserDefaultsManager manager(store, domain);
        manager.setObject(u"a"_s, u"first"_s);
        manager.setObject(u"b"_s, u"second"_s);
        manager.reset();
        EXPECT_FALSE(manager.objectForKey(u"first"_s).isValid());
        manager.setObject(u"c"_s, u"third"_s);
    }
    OSTDefaultsStore store(path);
    EXPECT_EQ(store.persistentDomain(domain), (QVariantMap{{u"third"_s, u"c"_s}}));
}

TEST_F(UserDefaultsManager, EnteringTheBackgroundSynchronisesAStaleDomain)
{
    OSTDefaultsStore store(path);
    OSTUserDefaultsManager manager(store, domain);
    manager.setObject(u"a"_s, u"first"_s);
    manager.reset();
    EXPECT_EQ(store.persistentDomain(domain)->size(), 1);

    OSTNotificationCenter::defaultCenter().post(OSTApplicationDidEnterBackgroundNotification);
    EXPECT_TRUE(store.persistentDomain(domain)->isEmpty());
}

TEST_F(UserDefaultsManager, AValueSurvivesTheWriterBeingKilled)
{
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(),
                {test::OSTChildProcess::argumentFor(u"write-then-wait"_s), path});
    ASSERT_TRUE(child.waitForStarted());
    ASSERT_TRUE(child.waitForReadyRead(30000)) << child.readAllStandardError().toStdString();
    ASSERT_EQ(child.readLine().trimmed(), "written");
    ::kill(static_cast<pid_t>(child.processId()), SIGKILL);
    ASSERT_TRUE(child.waitForFinished());
    EXPECT_EQ(child.exitStatus(), QProcess::CrashExit);

    OSTDefaultsStore store(path);
    OSTUserDefaultsManager manager(store, domain);
    EXPECT_EQ(manager.objectForKey(u"crashKey"_s), u"survives"_s);
}

TEST_F(UserDefaultsManager, ConcurrentWritersLeaveTheLastValueOfEveryKey)
{
    QVariantMap finalDomain;
    {
        OSTDefaultsStore store(path);
        OSTUserDefaultsManager manager(store, domain);
        constexpr int threadCount = 6;
        constexpr int rounds = 60;
        std::vector<std::thread> threads;
        for (int thread = 0; thread < threadCount; ++thread) {
            threads.emplace_back([&manager, thread] {
                for (int round = 0; round < rounds; ++round) {
                    manager.setNumber(round, u"own-%1"_s.arg(thread));
                    manager.setObject(u"%1:%2"_s.arg(thread).arg(round), u"shared-%1"_s.arg(round % 3));
                    if (round % 7 == 0)
                        manager.removeObjectForKey(u"shared-%1"_s.arg((round + 1) % 3));
                    (void)manager.objectForKey(u"shared-0"_s);
                    (void)manager.boolForKey(u"own-0"_s);
                }
            });
        }
        for (auto &thread : threads)
            thread.join();
        for (int thread = 0; thread < threadCount; ++thread)
            EXPECT_EQ(manager.numberForKey(u"own-%1"_s.arg(thread)).toDouble(), rounds - 1);
        for (const QString &key : {u"shared-0"_s, u"shared-1"_s, u"shared-2"_s}) {
            const QVariant value = manager.objectForKey(key);
            if (value.isValid())
                finalDomain.insert(key, value);
        }
        for (int thread = 0; thread < threadCount; ++thread)
            finalDomain.insert(u"own-%1"_s.arg(thread), manager.objectForKey(u"own-%1"_s.arg(thread)));
    }
    OSTDefaultsStore reopened(path);
    EXPECT_EQ(reopened.persistentDomain(domain), finalDomain);
}

TEST_F(UserDefaultsManager, ACorruptStoreIsMovedAsideAndTheSdkStartsEmpty)
{
    test::writeFile(path, QByteArray(4096, 'x'));

    std::unique_ptr<OSTDefaultsStore> store;
    std::unique_ptr<OSTUserDefaultsManager> manager;
    const QString log = test::captureStandardError([&] {
        store = std::make_unique<OSTDefaultsStore>(path);
        manager = std::make_unique<OSTUserDefaultsManager>(*store, domain);
    });
    EXPECT_TRUE(log.startsWith(u"Ostrel Error: the store "_s)) << log.toStdString();
    EXPECT_TRUE(log.contains(u"moved to"_s)) << log.toStdString();
    EXPECT_FALSE(manager->objectForKey(u"anything"_s).isValid());

    manager->setObject(u"fresh"_s, u"key"_s);
    EXPECT_EQ(OSTDefaultsStore(path).persistentDomain(domain)->value(u"key"_s), u"fresh"_s);
    const QStringList aside = QDir(folder.path()).entryList({u"store.sqlite.corrupt-*"_s});
    ASSERT_EQ(aside.size(), 1);
    QFile moved(folder.filePath(aside.first()));
    ASSERT_TRUE(moved.open(QIODevice::ReadOnly));
    EXPECT_EQ(moved.readAll(), QByteArray(4096, 'x')) << "the damaged file is kept for inspection";
}
