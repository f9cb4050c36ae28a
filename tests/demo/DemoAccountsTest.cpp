#include "DemoAccounts.h"
#include "DemoExperienceDelegate.h"

#include "support/OSTTestSupport.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace ostrel;
using namespace ostrel::demo;

namespace {

QVariantMap ada(const QString &email = u"Ada@Example.com"_s, const QString &password = u"engine"_s)
{
    return {{u"name"_s, u"Ada Lovelace"_s}, {u"email"_s, email}, {u"password"_s, password}};
}

} // namespace

TEST(DemoAccounts, ASignedUpAddressLogsInWithItsPasswordWhateverTheCaseAndBlanks)
{
    DemoAccounts accounts;
    const auto account = accounts.signUp(ada());
    ASSERT_TRUE(account);
    EXPECT_EQ(account->name, u"Ada Lovelace"_s);
    EXPECT_TRUE(accounts.isRegistered(u" ada@EXAMPLE.com "_s));

    const auto loggedIn = accounts.logIn(ada(u" ada@example.COM"_s));
    ASSERT_TRUE(loggedIn);
    EXPECT_EQ(loggedIn->userID, account->userID);
}

TEST(DemoAccounts, RefusesWhatABackEndWouldRefuse)
{
    DemoAccounts accounts;
    ASSERT_TRUE(accounts.signUp(ada()));
    EXPECT_FALSE(accounts.signUp(ada(u"ada@example.com"_s, u"other"_s))) << "the address is taken";
    EXPECT_FALSE(accounts.signUp({{u"name"_s, u"Nobody"_s}})) << "no address";
    EXPECT_FALSE(accounts.logIn(ada(u"ada@example.com"_s, u"wrong"_s))) << "wrong password";
    EXPECT_FALSE(accounts.logIn(ada(u"grace@example.com"_s))) << "unknown address";
}

class DemoExperienceDelegateTest : public testing::Test {
protected:
    struct Answer {
        bool answered = false;
        OSTValidationResult result;
        QString userID;
    };

    OSTExperienceDelegate::AuthenticationCompletion recordInto(Answer &answer)
    {
        return [&answer](const OSTValidationResult &result, const QString &userID) {
            answer = {true, result, userID};
        };
    }

    static bool waitFor(const Answer &answer)
    {
        return test::waitUntil([&answer] { return answer.answered; }, 5000);
    }

    DemoExperienceDelegate delegate{std::chrono::milliseconds(1)};
};

TEST_F(DemoExperienceDelegateTest, SignsUpThenLogsInAndRejectsATakenAddress)
{
    // The window shows each callback when it is announced and reads the SDK's user then, so
    // the answer must have reached the SDK by that time.
    Answer signUp;
    Answer logIn;
    bool uniqueAnswered = false;
    QStringList outcomes;
    const QHash<QString, const bool *> answered{{u"signUpWithFields"_s, &signUp.answered},
                                                {u"logInWithFields"_s, &logIn.answered},
                                                {u"validateUniqueFields"_s, &uniqueAnswered}};
    QList<bool> answeredWhenAnnounced;
    QObject::connect(&delegate, &DemoExperienceDelegate::received,
                     [&](const QString &callback, const QVariantMap &, const QString &outcome) {
                         outcomes.append(callback + u": "_s + outcome);
                         answeredWhenAnnounced.append(*answered.value(callback));
                     });

    delegate.signUpWithFields(ada(), recordInto(signUp));
    ASSERT_TRUE(waitFor(signUp));
    EXPECT_TRUE(signUp.result.isValid());
    EXPECT_FALSE(signUp.userID.isEmpty());

    delegate.logInWithFields(ada(), recordInto(logIn));
    ASSERT_TRUE(waitFor(logIn));
    EXPECT_TRUE(logIn.result.isValid());
    EXPECT_EQ(logIn.userID, signUp.userID);

    OSTValidationResult unique;
    delegate.validateUniqueFields({{u"email"_s, u"ada@example.com"_s}}, [&](const OSTValidationResult &result) {
        uniqueAnswered = true;
        unique = result;
    });
    ASSERT_TRUE(test::waitUntil([&] { return uniqueAnswered; }, 5000));
    EXPECT_EQ(unique.invalidFields(), QStringList{u"email"_s});
    EXPECT_EQ(unique.errorMessages().value(u"email"_s), u"This e-mail address is already registered."_s);

    ASSERT_EQ(outcomes.size(), 3);
    EXPECT_TRUE(outcomes.at(0).startsWith(u"signUpWithFields: signed up as "_s));
    EXPECT_TRUE(outcomes.at(1).startsWith(u"logInWithFields: logged in as "_s));
    EXPECT_EQ(outcomes.at(2), u"validateUniqueFields: rejected: address taken"_s);
    EXPECT_EQ(answeredWhenAnnounced, (QList<bool>{true, true, true}));
}

TEST_F(DemoExperienceDelegateTest, ALogInFailureNamesTheFieldToCorrect)
{
    Answer signUp;
    delegate.signUpWithFields(ada(), recordInto(signUp));
    ASSERT_TRUE(waitFor(signUp));

    const struct {
        QVariantMap fields;
        QString invalidField;
    } cases[] = {
        {ada(u"grace@example.com"_s), u"email"_s},
        {ada(u"ada@example.com"_s, u"wrong"_s), u"password"_s},
    };
    for (const auto &failure : cases) {
        Answer logIn;
        delegate.logInWithFields(failure.fields, recordInto(logIn));
        ASSERT_TRUE(waitFor(logIn));
        EXPECT_FALSE(logIn.result.isValid());
        EXPECT_EQ(logIn.result.invalidFields(), QStringList{failure.invalidField});
        EXPECT_FALSE(logIn.result.errorMessages().value(failure.invalidField).isEmpty());
        EXPECT_TRUE(logIn.userID.isEmpty());
    }

    bool recovered = false;
    OSTValidationResult recovery;
    delegate.recoverPasswordWithFields({{u"email"_s, u"grace@example.com"_s}}, [&](const OSTValidationResult &result) {
        recovered = true;
        recovery = result;
    });
    ASSERT_TRUE(test::waitUntil([&] { return recovered; }, 5000));
    EXPECT_EQ(recovery.invalidFields(), QStringList{u"email"_s});
}
