#include "platform/OSTDefaultsStore.h"
#include "platform/OSTPropertyListArchive.h"
#include "support/OSTTestSupport.h"

#include <QDateTime>
#include <QDir>
#include <QPoint>
#include <QSize>
#include <QTemporaryDir>
#include <QTimeZone>

#include <gtest/gtest.h>

#include <sqlite3.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

TEST(PropertyListArchive, RoundTripsPropertyListsAndRejectsEverythingElse)
{
    const QVariantMap value{{u"s"_s, u"text"_s}, {u"b"_s, true}, {u"i"_s, 42}, {u"l"_s, qlonglong(1) << 40},
                            {u"d"_s, 2.5}, {u"data"_s, QByteArray("\0x", 2)},
                            {u"date"_s, QDateTime::fromMSecsSinceEpoch(1234567, Qt::UTC)},
                            {u"list"_s, QVariantList{1, u"two"_s, QVariantMap{{u"three"_s, 3}}}}};
    const QByteArray archive = OSTPropertyListArchive::archive(value);
    const auto restored = OSTPropertyListArchive::unarchive(archive);
    ASSERT_TRUE(restored);
    EXPECT_EQ(*restored, QVariant(value));
    EXPECT_EQ(restored->toMap().value(u"b"_s).typeId(), QMetaType::Bool) << "booleans stay booleans";

    EXPECT_TRUE(OSTPropertyListArchive::archive(QVariant::fromValue(QPoint())).isEmpty());
    EXPECT_FALSE(OSTPropertyListArchive::isPropertyListValue(QVariantList{QVariant()}));
    EXPECT_FALSE(OSTPropertyListArchive::unarchive("OSTP"));
    EXPECT_FALSE(OSTPropertyListArchive::unarchive("garbage bytes"));
    EXPECT_FALSE(OSTPropertyListArchive::unarchive(archive.left(archive.size() - 3)));
    QByteArray futureVersion = archive;
    futureVersion[4] = 9;
    EXPECT_FALSE(OSTPropertyListArchive::unarchive(futureVersion));
}

TEST(DefaultsStore, DomainsAreSeparateAndExistOnceStored)
{
    QTemporaryDir folder;
    OSTDefaultsStore store(folder.filePath(u"prefs/store.sqlite"_s));
    ASSERT_TRUE(store.isOpen());
    EXPECT_FALSE(store.persistentDomain(u"a"_s));
    EXPECT_TRUE(store.setPersistentDomain(u"empty"_s, {}));
    EXPECT_EQ(store.persistentDomain(u"empty"_s), QVariantMap());

    EXPECT_TRUE(store.setValue(u"a"_s, u"k"_s, 1));
    EXPECT_TRUE(store.setValue(u"b"_s, u"k"_s, 2));
    EXPECT_TRUE(store.setPersistentDomain(u"a"_s, {{u"x"_s, u"y"_s}}));
    EXPECT_EQ(store.persistentDomain(u"a"_s), (QVariantMap{{u"x"_s, u"y"_s}}));
    EXPECT_EQ(store.persistentDomain(u"b"_s), (QVariantMap{{u"k"_s, 2}}));
    EXPECT_TRUE(store.removeValue(u"b"_s, u"k"_s));
    EXPECT_EQ(store.persistentDomain(u"b"_s), QVariantMap());
    EXPECT_TRUE(store.removePersistentDomain(u"a"_s));
    EXPECT_FALSE(store.persistentDomain(u"a"_s));
    EXPECT_FALSE(store.setValue(u"a"_s, u"bad"_s, QVariant::fromValue(QSize())));
    EXPECT_TRUE(store.synchronize());
}

TEST(DefaultsStore, UndecodableRowsAreSkippedAndReported)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"store.sqlite"_s);
    {
        OSTDefaultsStore store(path);
        store.setValue(u"d"_s, u"good"_s, u"fine"_s);
    }
    sqlite3 *database = nullptr;
    ASSERT_EQ(sqlite3_open(path.toUtf8().constData(), &database), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(database, "INSERT INTO entries VALUES ('d', 'bad', x'00ff')", nullptr, nullptr, nullptr),
              SQLITE_OK);
    sqlite3_close(database);

    OSTDefaultsStore store(path);
    EXPECT_EQ(store.persistentDomain(u"d"_s), (QVariantMap{{u"good"_s, u"fine"_s}}));
    const QStringList problems = store.takeProblems();
    ASSERT_EQ(problems.size(), 1);
    EXPECT_TRUE(problems.first().contains(u"\"bad\""_s));
    EXPECT_TRUE(store.takeProblems().isEmpty());
}

TEST(DefaultsStore, AStoreThatCannotBeCreatedFailsEveryWrite)
{
    QTemporaryDir folder;
    test::writeFile(folder.filePath(u"file"_s), "a file where a folder should be");
    OSTDefaultsStore store(folder.filePath(u"file/store.sqlite"_s));
    EXPECT_FALSE(store.isOpen());
    EXPECT_FALSE(store.takeProblems().isEmpty());
    EXPECT_FALSE(store.setValue(u"d"_s, u"k"_s, 1));
    EXPECT_FALSE(store.persistentDomain(u"d"_s));
    EXPECT_FALSE(store.synchronize());
}
