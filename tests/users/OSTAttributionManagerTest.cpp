// The attribution records (keep-or-empty rules, persistence, the latest record starting as the
// install record), the dynamic variables they feed, the device fingerprint on a desktop, the
// advertising adapter and which links count as the service's.

#include <ostrel/OSTAdvertisingIdentifierSource.h>
#include <ostrel/OSTRuntime.h>
#include <ostrel/Ostrel.h>

#include "core/OSTLogging.h"
#include "core/OSTUserDefaultsManager.h"
#include "platform/OSTBundle.h"
#include "platform/OSTClock.h"
#include "support/OSTTestSupport.h"
#include "users/OSTAttributionManager.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTemporaryDir>
#include <QUuid>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

struct AppendedVariables {
    QVariantMap variables;
    QString prefix;
    friend bool operator==(const AppendedVariables &, const AppendedVariables &) = default;
};

const QVariantMap firstInstall = test::jsonObject(R"({
    "referral": 1, "deeplink": "myapp://home", "link_id": "L1", "link_name": "Spring",
    "attribution_params": {"campaign": "spring", "budget": 12}, "sender": {"first_name": "Ada"},
    "source_name": "newsletter", "targeting_id": "T1", "targeting_name": "SPRING"})");

class AttributionManagerTest : public ::testing::Test {
protected:
    AttributionManagerTest() { OSTLogging::setLoggingLevel(OSTLoggingLevelWarning); }

    OSTAttributionServices services()
    {
        return {.sdkToken = [this] { return token; },
                .formatTimestamp = [](double seconds) { return QString::number(seconds, 'f', 0); },
                .appendDynamicVariables =
                    [this](const QVariantMap &variables, const QString &prefix) {
                        appended.push_back({variables, prefix});
                    }};
    }

    static OSTUserDefaultsManager &settings() { return OSTUserDefaultsManager::sharedManager(); }

    std::optional<QString> token = u"tok"_s;
    std::vector<AppendedVariables> appended;
};

class FixedAdvertisingSource : public OSTAdvertisingIdentifierSource {
public:
    FixedAdvertisingSource(bool enabled, QUuid identifier) : m_enabled(enabled), m_identifier(identifier) {}
    bool isAdvertisingTrackingEnabled() const override { return m_enabled; }
    QUuid advertisingIdentifier() const override { return m_identifier; }

private:
    bool m_enabled;
    QUuid m_identifier;
};

} // namespace

TEST_F(AttributionManagerTest, InstallRecordKeepsMissingStringsEmptiesMissingDictionariesAndPersists)
{
    OSTAttributionManager manager(settings(), services());
    EXPECT_EQ(manager.installAttribution(), std::nullopt);
    manager.updateInstallAttributionFromResponse(firstInstall);

    // Second response: no dictionaries, no link name, a wrongly typed deep link and referral.
    manager.updateInstallAttributionFromResponse(QVariantMap{
        {u"link_id"_s, u"L2"_s}, {u"deeplink"_s, 7}, {u"referral"_s, u"no"_s}, {u"sender"_s, u"not a map"_s}});
    const std::optional<OSTAttribution> install = manager.installAttribution();
    ASSERT_TRUE(install);
    EXPECT_FALSE(install->isReferral) << "a referral that is not a number reads as missing: NO";
    EXPECT_EQ(install->linkID, u"L2"_s);
    EXPECT_EQ(install->linkName, u"Spring"_s) << "missing strings are kept";
    EXPECT_EQ(install->deepLink, u"myapp://home"_s) << "a wrongly typed string is kept";
    EXPECT_EQ(install->sourceName, u"newsletter"_s);
    EXPECT_EQ(install->parameters, QVariantMap()) << "missing dictionaries are emptied";
    EXPECT_EQ(install->sender, QVariantMap());
    EXPECT_EQ(install->sourceID, std::nullopt);

    // What was archived is what a new process reads.
    const QVariantMap archive = settings().objectForKey(u"installAttribution"_s).toMap();
    EXPECT_EQ(archive.value(u"link_id"_s), u"L2"_s);
    EXPECT_EQ(archive.value(u"link_name"_s), u"Spring"_s);
    EXPECT_EQ(archive.value(u"referral"_s), QVariant(false));
    OSTAttributionManager restarted(settings(), services());
    EXPECT_EQ(restarted.installAttribution(), install);

    // The first update gave the parameters as variables as they are and the sender under a prefix.
    ASSERT_GE(appended.size(), 2u);
    EXPECT_EQ(appended.at(0), (AppendedVariables{firstInstall.value(u"attribution_params"_s).toMap(), QString()}));
    EXPECT_EQ(appended.at(1), (AppendedVariables{{{u"first_name"_s, u"Ada"_s}}, u"sender"_s}));
}

TEST_F(AttributionManagerTest, LatestRecordChangesOnlyWithAReturnAndStartsEachProcessAsTheInstall)
{
    OSTAttributionManager manager(settings(), services());
    manager.processLaunchResponse(firstInstall);
    EXPECT_EQ(manager.latestAttribution(), manager.installAttribution()) << "no return yet";
    EXPECT_TRUE(settings().objectForKey(u"latestAttribution"_s).isValid()) << "archived even unchanged";

    appended.clear();
    manager.updateLatestAttributionFromResponse(test::jsonObject(R"({"return_referral": true, "return_link_id": "R1",
        "return_attribution_params": {"deeplink": "myapp://promo"}, "return_sender": {"name": "Grace"},
        "link_id": "ignored"})"));
    const std::optional<OSTAttribution> latest = manager.latestAttribution();
    ASSERT_TRUE(latest);
    EXPECT_TRUE(latest->isReferral);
    EXPECT_EQ(latest->linkID, u"R1"_s);
    EXPECT_EQ(latest->linkName, u"Spring"_s) << "kept from the install record it started as";
    EXPECT_EQ(latest->parameters, (QVariantMap{{u"deeplink"_s, u"myapp://promo"_s}}));
    EXPECT_EQ(appended, (std::vector<AppendedVariables>{{{{u"deeplink"_s, u"myapp://promo"_s}}, u"return"_s},
                                                        {{{u"name"_s, u"Grace"_s}}, u"return.sender"_s}}));
    // Nothing was archived before the first launch: the latest record is the install record itself.
    EXPECT_EQ(manager.installAttribution()->linkID, u"R1"_s);

    // Without "return_referral" nothing changes.
    manager.updateLatestAttributionFromResponse(QVariantMap{{u"return_link_id"_s, u"R2"_s}});
    EXPECT_EQ(manager.latestAttribution()->linkID, u"R1"_s);

    // A new process: separate records, the latest read from the install archive.
    settings().setObject(QVariantMap{{u"link_id"_s, u"other"_s}}, u"latestAttribution"_s);
    OSTAttributionManager restarted(settings(), services());
    EXPECT_EQ(restarted.latestAttribution(), restarted.installAttribution());
    restarted.updateLatestAttributionFromResponse(QVariantMap{{u"return_referral"_s, 0}, {u"return_link_id"_s, u"R3"_s}});
    EXPECT_EQ(restarted.latestAttribution()->linkID, u"R3"_s);
    EXPECT_EQ(restarted.installAttribution()->linkID, u"L1"_s)
        << "no longer the same record; the install archive was last written by the install update";
}

TEST_F(AttributionManagerTest, ArchivesOfTheWrongShapeReadAsNothingOrAsEmptyFields)
{
    settings().setObject(u"garbage"_s, u"installAttribution"_s);
    EXPECT_EQ(OSTAttributionManager(settings(), services()).installAttribution(), std::nullopt);

    settings().setObject(QVariantMap{{u"link_id"_s, 5}, {u"referral"_s, u"yes"_s}, {u"parameters"_s, u"x"_s}},
                         u"installAttribution"_s);
    const auto install = OSTAttributionManager(settings(), services()).installAttribution();
    ASSERT_TRUE(install);
    EXPECT_EQ(*install, OSTAttribution());
}

TEST_F(AttributionManagerTest, FingerprintCarriesTheDesktopValues)
{
    test::ManualClockScope clock(100.0);
    OSTAttributionManager manager(settings(), services());
    const QVariantMap fingerprint = manager.deviceFingerprint();

    // The values shared with the service's requests are checked end to end in
    // tests/launch/OSTAttributionLaunchTest.cpp; here: the screen, the identifier, token and time.
    const QString deviceID = fingerprint.value(u"device_id"_s).toString();
    EXPECT_FALSE(QUuid::fromString(deviceID).isNull()) << deviceID.toStdString();
    EXPECT_EQ(deviceID, deviceID.toUpper());
    const QScreen *screen = QGuiApplication::primaryScreen();
    ASSERT_NE(screen, nullptr);
    const double ratio = screen->devicePixelRatio();
    EXPECT_EQ(fingerprint.value(u"device_resolution"_s).toString(),
              u"%1x%2"_s.arg(qRound(screen->size().width() * ratio)).arg(qRound(screen->size().height() * ratio)));
    EXPECT_EQ(fingerprint.value(u"token"_s), u"tok"_s);
    EXPECT_EQ(fingerprint.value(u"device_timestamp"_s), QString::number(100.0 + OSTClock::referenceDateOffset, 'f', 0));

    // The same installation keeps its identifier; no token, no "token".
    token.reset();
    const QVariantMap again = OSTAttributionManager(settings(), services()).deviceFingerprint();
    EXPECT_EQ(again.value(u"device_id"_s), deviceID);
    EXPECT_FALSE(again.contains(u"token"_s));
}

TEST_F(AttributionManagerTest, FingerprintLanguageAndCountryComeFromTheLocale)
{
    const OSTDeviceFingerprint fingerprint(settings(), u"3.0.0"_s);
    const QVariantMap french = fingerprint.fingerprint(std::nullopt, u"t"_s, QLocale(u"fr_CA"_s), {u"fr-CA"_s, u"en"_s});
    EXPECT_EQ(french.value(u"country"_s), u"CA"_s);
    EXPECT_EQ(french.value(u"language"_s), u"fr-CA"_s);
    EXPECT_EQ(french.value(u"locale"_s), u"fr-CA"_s) << "the first preferred language, not the locale's name";

    const QVariantMap unknown = fingerprint.fingerprint(std::nullopt, u"t"_s, QLocale::c(), {});
    EXPECT_FALSE(unknown.contains(u"country"_s));
    EXPECT_FALSE(unknown.contains(u"language"_s));
    EXPECT_FALSE(unknown.contains(u"locale"_s));
    EXPECT_EQ(unknown.value(u"device_timestamp"_s), u"t"_s);
}

TEST_F(AttributionManagerTest, AdvertisingIdentifierNeedsTheSwitchAnAdapterAndTrackingAllowed)
{
    OSTAttributionManager manager(settings(), services());
    EXPECT_TRUE(manager.shouldUseIDFA());
    EXPECT_EQ(manager.advertisingIdentifierString(), std::nullopt) << "no adapter registered";

    const QUuid identifier = QUuid::createUuid();
    OSTRuntime::registerInstance<OSTAdvertisingIdentifierSource>(
        OSTAdvertisingIdentifierSourceName, std::make_shared<FixedAdvertisingSource>(true, identifier));
    EXPECT_EQ(manager.advertisingIdentifierString(), identifier.toString(QUuid::WithoutBraces).toUpper());
    manager.setShouldUseIDFA(false);
    EXPECT_EQ(manager.advertisingIdentifierString(), std::nullopt);
    manager.setShouldUseIDFA(true);

    OSTRuntime::registerInstance<OSTAdvertisingIdentifierSource>(
        OSTAdvertisingIdentifierSourceName, std::make_shared<FixedAdvertisingSource>(false, identifier));
    EXPECT_EQ(manager.advertisingIdentifierString(), std::nullopt) << "tracking not allowed";
    OSTRuntime::registerInstance<OSTAdvertisingIdentifierSource>(
        OSTAdvertisingIdentifierSourceName, std::make_shared<FixedAdvertisingSource>(true, QUuid()));
    EXPECT_EQ(manager.advertisingIdentifierString(), std::nullopt) << "a null identifier is none";
}

TEST_F(AttributionManagerTest, OnlyWebLinksOnTheServiceLinkHostsAreHandled)
{
    QTemporaryDir bundle;
    OSTBundle::setMainBundlePath(test::writeBundle(
        bundle.path(), {{u"OstrelLinkHosts"_s, QVariantList{u"go.ostrel.example"_s, u""_s, 5, u"OST.LI"_s}}}));
    OSTAttributionManager manager(settings(), services());
    struct Case {
        const char *address;
        QString type;
        bool handled;
    };
    const QString web = OSTUserActivityTypeBrowsingWeb;
    const std::vector<Case> cases{
        {"https://go.ostrel.example/abc", web, true},
        {"http://go.ostrel.example/abc", web, true},
        {"https://eu.go.ostrel.example/abc", web, true},
        {"https://go.ostrel.example.evil.test/abc", web, true}, // a substring test, as the service expects
        {"https://ost.li/x", web, true},
        {"https://ostrel.example/abc", web, false},
        {"myapp://go.ostrel.example/abc", web, false},
        {"ftp://go.ostrel.example/abc", web, false},
        {"https://go.ostrel.example/abc", u"com.example.other"_s, false},
        {"", web, false},
        {"not a url", web, false},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.address);
        EXPECT_EQ(manager.canHandleUserActivity(c.type, QUrl(QString::fromUtf8(c.address))), c.handled);
    }
    EXPECT_FALSE(manager.continueUserActivity(web, QUrl(u"https://elsewhere.example/"_s)));
}

TEST_F(AttributionManagerTest, RecordsReadFromAnotherThreadWhileLaunchResponsesArrive)
{
    OSTAttributionManager manager(settings(), services());
    std::atomic<bool> done = false;
    std::atomic<int> inconsistent = 0;
    std::thread reader([&] {
        while (!done) {
            // An update writes the link id and name together; a reader never sees half of one.
            if (const auto latest = manager.latestAttribution()) {
                if (latest->linkID.value_or(QString()) != latest->linkName.value_or(QString()))
                    ++inconsistent;
            }
        }
    });
    for (int i = 0; i < 300; ++i) {
        const QString value = QString::number(i);
        manager.processLaunchResponse(QVariantMap{{u"link_id"_s, value}, {u"link_name"_s, value}});
    }
    done = true;
    reader.join();
    EXPECT_EQ(inconsistent, 0);
    EXPECT_EQ(manager.latestAttribution()->linkID, u"299"_s);
}
