// The service manager's decisions that need no service: the token, the local default document,
// the resend rule and the session arithmetic.

#include <ostrel/Ostrel.h>

#include "launch/OSTServiceManager.h"
#include "core/OSTUserDefaultsManager.h"
#include "platform/OSTApplication.h"
#include "platform/OSTBundle.h"
#include "support/OSTTestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

TEST(ServiceManager, AMissingOrEmptyTokenLeavesTheSdkUnstarted)
{
    OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Host);
    QTemporaryDir bundle;
    OSTBundle::setMainBundlePath(test::writeBundle(bundle.path(), {{u"OstrelToken"_s, u""_s}}));
    const QString missing = test::captureStandardError([] { Ostrel::start(); });
    // Start-up also reads the local default document, which this bundle lacks (a warning of its own).
    EXPECT_TRUE(missing.contains(u"Ostrel Error: Missing SDK Token. Please either add it to your Info.plist, or pass "
                                 u"it as a parameter!\n"_s))
        << missing.toStdString();
    EXPECT_FALSE(OSTServiceManager::sharedManager().isInitialized());

    OSTBundle::setMainBundlePath(test::writeBundle(bundle.path(), {{u"OstrelToken"_s, 42}}));
    EXPECT_FALSE(OSTServiceManager::getTokenFromInfoPlist()) << "a token that is not a string is missing";

    Ostrel::startWithToken(u"from-code"_s);
    EXPECT_EQ(OSTServiceManager::sharedManager().token(), u"from-code"_s);
    const QString again = test::captureStandardError([] { Ostrel::startWithToken(u"from-code"_s); });
    EXPECT_EQ(again, u"Ostrel Warning: The SDK is already initialized.\n"_s);
}

TEST(ServiceManager, ABrokenInfoFileIsReportedOnceAtStart)
{
    QTemporaryDir bundle;
    test::writeFile(bundle.filePath(u"Info.json"_s), "{ \"OstrelToken\": ");
    OSTBundle::setMainBundlePath(bundle.path());
    const QString log = test::captureStandardError([] {
        Ostrel::start();
        Ostrel::start();
    });
    EXPECT_EQ(log.count(u"Ostrel Error: The main bundle's Info.json could not be read:"_s), 1) << log.toStdString();
    EXPECT_EQ(log.count(u"Missing SDK Token"_s), 2);
}

TEST(ServiceManager, SessionDifferenceCountsFromTheLastBackgroundEntry)
{
    test::ManualClockScope time(5000.0);
    OSTServiceManager &manager = OSTServiceManager::sharedManager();
    EXPECT_EQ(manager.sessionDifference(), 0.0) << "no stored start";
    manager.updateSessionDelayStart();
    EXPECT_EQ(OSTUserDefaultsManager::sharedManager().numberForKey(u"session_delay_start"_s).toDouble(), 5000.0);
    time.advance(12.5);
    EXPECT_EQ(manager.sessionDifference(), 12.5);
    manager.clearSessionDelayStart();
    EXPECT_EQ(manager.sessionDifference(), 0.0);
}

TEST(ServiceManager, LocalDefaultMissing)
{
    QTemporaryDir bundle;
    OSTBundle::setMainBundlePath(test::writeBundle(bundle.path(), {}));
    const QString log = test::captureStandardError([] { EXPECT_FALSE(OSTServiceManager::localDefault()); });
    EXPECT_EQ(log, u"Ostrel Warning: No local default JSON found.\n"_s);
    EXPECT_TRUE(test::captureStandardError([] { OSTServiceManager::localDefault(); }).isEmpty()) << "read once";
}

TEST(ServiceManager, LocalDefaultThatIsNotADocument)
{
    QTemporaryDir bundle;
    test::writeFile(bundle.filePath(u"OSTDefault.json"_s), "[\"not\", \"a\", \"document\"]");
    OSTBundle::setMainBundlePath(test::writeBundle(bundle.path(), {}));
    const QString log = test::captureStandardError([] { EXPECT_FALSE(OSTServiceManager::localDefault()); });
    EXPECT_EQ(log, u"Ostrel Error: The local default JSON could not be serialized!\n"_s);
}

TEST(ServiceManager, LocalDefaultIsReadFromTheMainBundle)
{
    QTemporaryDir bundle;
    test::writeFile(bundle.filePath(u"OSTDefault.json"_s), R"({"flow": {"install": ["welcome"]}})");
    OSTBundle::setMainBundlePath(test::writeBundle(bundle.path(), {}));
    const auto &document = OSTServiceManager::localDefault();
    ASSERT_TRUE(document);
    EXPECT_EQ(document->value(u"flow"_s).toMap().value(u"install"_s).toList().size(), 1);
}
