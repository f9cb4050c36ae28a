#include "core/OSTLogging.h"

#include "platform/OSTBundle.h"
#include "support/OSTTestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

TEST(Logging, EachLevelWritesItsOwnPrefixAndThoseBelow)
{
    OSTLogging::setLoggingLevel(OSTLoggingLevelWarning);
    bool wroteInfo = true;
    bool wroteWarning = false;
    const QString atWarning = test::captureStandardError([&] {
        EXPECT_TRUE(OSTLogging::logError(u"broken %1"_s, 7));
        wroteWarning = OSTLogging::logWarning(u"careful"_s);
        wroteInfo = OSTLogging::logInfo(u"hello"_s);
        EXPECT_FALSE(OSTLogging::logDebug(u"details"_s));
    });
    EXPECT_TRUE(wroteWarning);
    EXPECT_FALSE(wroteInfo);
    EXPECT_EQ(atWarning, u"Ostrel Error: broken 7\nOstrel Warning: careful\n"_s);

    OSTLogging::setLoggingLevel(OSTLoggingLevelDebug);
    const QString atDebug = test::captureStandardError([] {
        OSTLogging::logError(u"e"_s);
        OSTLogging::logWarning(u"w"_s);
        OSTLogging::logInfo(u"%1 and %2"_s, u"a"_s, true);
        OSTLogging::logDebug(u"%1"_s, QVariantMap{{u"k"_s, 1}});
    });
    EXPECT_EQ(atDebug, u"Ostrel Error: e\nOstrel Warning: w\nOstrel Info: a and YES\nOstrel Debug: {\"k\":1}\n"_s);
}

TEST(Logging, OutOfRangeLevelsBehaveAsTheNearestLevel)
{
    OSTLogging::setLoggingLevel(9);
    EXPECT_FALSE(test::captureStandardError([] { EXPECT_TRUE(OSTLogging::logDebug(u"x"_s)); }).isEmpty());

    OSTLogging::setLoggingLevel(static_cast<unsigned>(-1));
    EXPECT_TRUE(test::captureStandardError([] { EXPECT_FALSE(OSTLogging::logError(u"x"_s)); }).isEmpty());

    OSTLogging::setLoggingLevel(OSTLoggingLevelNone);
    EXPECT_TRUE(test::captureStandardError([] { EXPECT_FALSE(OSTLogging::logError(u"x"_s)); }).isEmpty());
}

// The default level is fixed on first use, so each of these tests sets the bundle before any log.
TEST(Logging, DevelopmentBundleDefaultsToErrorsAndWarnings)
{
    QTemporaryDir folder;
    OSTBundle::setMainBundlePath(test::writeBundle(folder.path(), {{u"OstrelDevelopmentBuild"_s, true}}));
    EXPECT_FALSE(OSTLogging::isInLiveEnvironment());
    EXPECT_EQ(OSTLogging::loggingLevel(), unsigned(OSTLoggingLevelWarning));
}

TEST(Logging, LiveBundleDefaultsToSilence)
{
    QTemporaryDir folder;
    OSTBundle::setMainBundlePath(test::writeBundle(folder.path(), {{u"OstrelDevelopmentBuild"_s, false}}));
    EXPECT_TRUE(OSTLogging::isInLiveEnvironment());
    EXPECT_EQ(OSTLogging::loggingLevel(), unsigned(OSTLoggingLevelNone));
    EXPECT_TRUE(test::captureStandardError([] { OSTLogging::logError(u"quiet"_s); }).isEmpty());
}

TEST(Logging, WithoutTheInfoKeyTheSdkBuildTypeDecides)
{
    QTemporaryDir folder;
    OSTBundle::setMainBundlePath(test::writeBundle(folder.path(), {}));
#ifdef NDEBUG
    EXPECT_TRUE(OSTLogging::isInLiveEnvironment());
    EXPECT_EQ(OSTLogging::loggingLevel(), unsigned(OSTLoggingLevelNone));
#else
    EXPECT_FALSE(OSTLogging::isInLiveEnvironment());
    EXPECT_EQ(OSTLogging::loggingLevel(), unsigned(OSTLoggingLevelWarning));
#endif
}

TEST(Logging, LevelSetBeforeFirstUseOverridesTheDefault)
{
    QTemporaryDir folder;
    OSTBundle::setMainBundlePath(test::writeBundle(folder.path(), {{u"OstrelDevelopmentBuild"_s, false}}));
    OSTLogging::setLoggingLevel(OSTLoggingLevelInfo);
    EXPECT_EQ(OSTLogging::loggingLevel(), unsigned(OSTLoggingLevelInfo));
}
