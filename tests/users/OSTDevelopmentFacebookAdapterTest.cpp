// The examples' development social log-in adapter behind the SDK's Facebook manager: the dialog
// is filled in and answered as a user would.

#include "OSTDevelopmentFacebookAdapter.h"

#include "platform/OSTBundle.h"
#include "support/OSTTestSupport.h"
#include "users/OSTFacebookManager.h"

#include <ostrel/OSTRuntime.h>

#include <QDialog>
#include <QLineEdit>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

class DevelopmentAdapter : public ::testing::Test {
protected:
    void SetUp() override
    {
        test::writeBundle(bundle.path(), {{u"FacebookAppID"_s, u"1234"_s}});
        OSTBundle::setMainBundlePath(bundle.path());
        OSTDevelopmentFacebookAdapter::registerWithRuntime(adapter);
    }
    void TearDown() override { OSTRuntime::unregister(OSTFacebookAdapter::runtimeName); }

    // Starts a log-in, types into the dialog and closes it; returns what the log-in completed with.
    std::optional<std::pair<bool, std::optional<QVariantMap>>> logIn(const QString &name, const QString &email,
                                                                     QDialog::DialogCode button)
    {
        std::optional<std::pair<bool, std::optional<QVariantMap>>> outcome;
        OSTFacebookManager::sharedManager().logInWithInfo(
            std::nullopt, [&](bool success, const std::optional<QVariantMap> &userInfo) { outcome = {success, userInfo}; });
        QDialog *dialog = adapter->loginDialog();
        EXPECT_NE(dialog, nullptr);
        if (!dialog)
            return std::nullopt;
        dialog->findChild<QLineEdit *>(u"name"_s)->setText(name);
        dialog->findChild<QLineEdit *>(u"email"_s)->setText(email);
        dialog->done(button);
        EXPECT_TRUE(test::waitUntil([&] { return outcome.has_value(); }));
        return outcome;
    }

    QTemporaryDir bundle;
    std::shared_ptr<OSTDevelopmentFacebookAdapter> adapter = std::make_shared<OSTDevelopmentFacebookAdapter>();
};

} // namespace

TEST_F(DevelopmentAdapter, TheDialogLogsInAndTheProfileCarriesWhatWasTyped)
{
    const auto cancelled = logIn(u"Ada Lovelace"_s, u"ada@example.com"_s, QDialog::Rejected);
    ASSERT_TRUE(cancelled.has_value());
    EXPECT_FALSE(cancelled->first);
    EXPECT_FALSE(adapter->currentAccessToken().has_value());

    const auto incomplete = logIn(u"Ada"_s, u"no address"_s, QDialog::Accepted);
    ASSERT_TRUE(incomplete.has_value());
    EXPECT_FALSE(incomplete->first);

    const auto accepted = logIn(u"Ada Lovelace"_s, u"ada@example.com"_s, QDialog::Accepted);
    ASSERT_TRUE(accepted.has_value());
    ASSERT_TRUE(accepted->first);
    const QVariantMap profile = accepted->second.value_or(QVariantMap());
    EXPECT_EQ(profile.value(u"name"_s), u"Ada Lovelace"_s);
    EXPECT_EQ(profile.value(u"first_name"_s), u"Ada"_s);
    EXPECT_EQ(profile.value(u"email"_s), u"ada@example.com"_s);
    EXPECT_TRUE(profile.value(u"profile_pic"_s).toString().startsWith(u"data:image/png;base64,"_s));
    const QString firstID = profile.value(u"id"_s).toString();
    EXPECT_FALSE(firstID.isEmpty());

    OSTFacebookManager::sharedManager().logOut();
    EXPECT_FALSE(OSTFacebookManager::sharedManager().isLoggedIn());
    const auto again = logIn(u"Ada L."_s, u"ADA@example.com "_s, QDialog::Accepted);
    ASSERT_TRUE(again.has_value() && again->first);
    EXPECT_EQ(again->second.value_or(QVariantMap()).value(u"id"_s), firstID) << "the same address is the same user";
}
