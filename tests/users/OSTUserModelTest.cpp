// The user as a value and as stored: appending, the stored form and what happens to a stored
// user that cannot be read.

#include <ostrel/OSTUser.h>

#include "core/OSTLogging.h"
#include "core/OSTUserDefaultsManager.h"
#include "platform/OSTPropertyListArchive.h"
#include "support/OSTTestSupport.h"
#include "users/OSTUserArchive.h"
#include "users/OSTUserManager.h"

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

OSTUser fullUser()
{
    OSTUser user;
    user.setUserID(u"u-1"_s);
    user.setName(u"Ada"_s);
    user.setProperties({{u"plan"_s, u"gold"_s}, {u"visits"_s, 3}, {u"nested"_s, QVariantMap{{u"k"_s, true}}}});
    user.setActiveABNTests({OSTUserABNTest(u"colour"_s, u"b"_s), OSTUserABNTest(u"copy"_s, u"a"_s)});
    user.setLastViewedVariation(u"v7"_s);
    return user;
}

} // namespace

TEST(UserModel, AppendingOverlaysOnlyChangedValues)
{
    OSTUser user;
    user.setProperties({{u"a"_s, 1}, {u"b"_s, u"x"_s}});
    const struct {
        QVariantMap appended;
        bool changes;
        QVariantMap after;
    } steps[] = {
        {{{u"a"_s, 1}}, false, {{u"a"_s, 1}, {u"b"_s, u"x"_s}}},
        {{{u"a"_s, 1.0}, {u"b"_s, u"x"_s}}, false, {{u"a"_s, 1}, {u"b"_s, u"x"_s}}},
        {{{u"a"_s, 2}, {u"b"_s, u"x"_s}}, true, {{u"a"_s, 2}, {u"b"_s, u"x"_s}}},
        {{{u"c"_s, QVariantList{1, 2}}}, true, {{u"a"_s, 2}, {u"b"_s, u"x"_s}, {u"c"_s, QVariantList{1, 2}}}},
        {{}, false, {{u"a"_s, 2}, {u"b"_s, u"x"_s}, {u"c"_s, QVariantList{1, 2}}}},
    };
    for (const auto &step : steps) {
        EXPECT_EQ(user.appendUserProperties(step.appended), step.changes);
        EXPECT_EQ(user.properties(), step.after);
    }
}

TEST(UserModel, TheStoredFormKeepsEveryFieldAndRejectsWhatItDidNotWrite)
{
    EXPECT_EQ(OSTUserArchive::unarchive(OSTUserArchive::archive(fullUser())), fullUser());
    EXPECT_EQ(OSTUserArchive::unarchive(OSTUserArchive::archive(OSTUser())), OSTUser());

    const QByteArray unreadable[] = {
        QByteArray(),
        QByteArray("not an archive"),
        OSTPropertyListArchive::archive(QVariantList{u"userID"_s}),
        OSTUserArchive::archive(fullUser()).chopped(3),
    };
    for (const QByteArray &bytes : unreadable)
        EXPECT_FALSE(OSTUserArchive::unarchive(bytes).has_value());

    // Fields of the wrong type read as absent; the rest is kept.
    const QByteArray mixed = OSTPropertyListArchive::archive(QVariantMap{
        {u"userID"_s, 12},
        {u"name"_s, u"Ada"_s},
        {u"properties"_s, u"none"_s},
        {u"activeABNTests"_s, QVariantList{QVariantMap{{u"name"_s, u"t"_s}, {u"variation"_s, u"a"_s}},
                                          QVariantMap{{u"name"_s, u"t"_s}}, 5}},
    });
    const std::optional<OSTUser> user = OSTUserArchive::unarchive(mixed);
    ASSERT_TRUE(user.has_value());
    EXPECT_FALSE(user->userID().has_value());
    EXPECT_EQ(user->name(), u"Ada"_s);
    EXPECT_TRUE(user->properties().isEmpty());
    EXPECT_EQ(user->activeABNTests(), (QList<OSTUserABNTest>{OSTUserABNTest(u"t"_s, u"a"_s)}));
}

TEST(UserModel, AnUnreadableStoredUserIsReplacedByAnEmptyOneWithAWarning)
{
    OSTLogging::setLoggingLevel(2);
    OSTUserDefaultsManager::sharedManager().setObject(QByteArray("\x01\x02garbage"), u"currentUser"_s);
    const QString log = test::captureStandardError([] { OSTUserManager::sharedManager(); });
    EXPECT_TRUE(log.contains(u"stored user could not be read"_s)) << log.toStdString();
    EXPECT_EQ(OSTUserManager::sharedManager().currentUser(), OSTUser());

    // The next change stores a readable user again.
    OSTUserManager::sharedManager().setLastViewedVariation(u"v2"_s);
    const QVariant stored = OSTUserDefaultsManager::sharedManager().objectForKey(u"currentUser"_s);
    EXPECT_EQ(OSTUserArchive::unarchive(stored.toByteArray()).value_or(OSTUser()).lastViewedVariation(), u"v2"_s);
}

TEST(UserModel, ALogInWithAnIdentifierThatIsNotTextHasTheEmptyIdentifier)
{
    OSTUserManager &users = OSTUserManager::sharedManager();
    EXPECT_FALSE(users.isLoggedInLifetime());
    const QVariant identifiers[] = {QVariant(42), QVariant(), QVariant(QVariantList{u"a"_s})};
    for (const QVariant &identifier : identifiers) {
        users.logInUserWithID(identifier);
        EXPECT_EQ(users.currentUser().userID(), u""_s);
    }
    EXPECT_TRUE(users.isLoggedIn());
    EXPECT_TRUE(users.isLoggedInLifetime());
    users.logOutUser();
    EXPECT_FALSE(users.isLoggedIn());
    EXPECT_TRUE(users.isLoggedInLifetime()) << "only ever turns true";
}
