// Phone numbers as users type or paste them, and their verification by PIN against the
// development service, which derives the PIN by the same rule and logs it.

#include "model/OSTPhoneNumberFormatter.h"
#include "model/OSTPhoneNumberManager.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTTestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>
#include <optional>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

using Manager = OSTPhoneNumberManager;
using Formatter = OSTPhoneNumberFormatter;

TEST(PhoneNumberText, PastedNumbersLoseTheirFormattingButKeepARealCallingCode)
{
    struct Case {
        QString text;
        QString raw;
        QString clean;
        QString normalized;
    };
    const Case cases[] = {
        {u"+44 (020) 7946-0958"_s, u"4402079460958"_s, u"02079460958"_s, u"+44 02079460958"_s},
        {u"(555) 123-4567"_s, u"5551234567"_s, u"5551234567"_s, u"5551234567"_s},
        {u"0044 20 7946 0958"_s, u"00442079460958"_s, u"00442079460958"_s, u"00442079460958"_s},
        // A code without digits right after the plus is no prefix: its digits join the number.
        {u"+ 345 949 1234"_s, u"3459491234"_s, u"3459491234"_s, u"3459491234"_s},
        // Letters and dots are no formatting characters: raw keeps them, clean drops them.
        {u"+1 555.123.abc"_s, u"1555.123.abc"_s, u"555123"_s, u"+1 555123"_s},
        {u""_s, u""_s, u""_s, u""_s},
        // Two prefixes: both are removed, the first is kept.
        {u"+1 +44 7"_s, u"1447"_s, u"7"_s, u"+1 7"_s},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        EXPECT_EQ(Formatter::rawPhoneNumber(c.text), c.raw);
        EXPECT_EQ(Formatter::cleanPhoneNumber(c.text), c.clean);
        EXPECT_EQ(Formatter::normalizedPhoneNumber(c.text), c.normalized);
    }
}

TEST(PhoneNumberText, LiveFormattingGroupsUSDigitsAndCutsLongNumbers)
{
    const std::pair<QString, QString> us[] = {
        {u"123"_s, u"123"_s},
        {u"1234"_s, u"(123) 4"_s},
        {u"123456"_s, u"(123) 456"_s},
        {u"1234567"_s, u"(123) 456-7"_s},
        {u"5551234567"_s, u"(555) 123-4567"_s},
        {u"55512345678"_s, u"(555) 123-4567"_s},
        {u"(555) 123-45"_s, u"(555) 123-45"_s},
        {u"+1 5551234567999"_s, u"(555) 123-4567"_s},
        {u"abc"_s, u""_s},
    };
    for (const auto &[text, formatted] : us)
        EXPECT_EQ(Formatter::formatUSPhoneNumber(text), formatted) << text.toStdString();

    EXPECT_EQ(Formatter::formatOtherPhoneNumber(u"+33 6 12 34 56 78"_s), u"612345678"_s);
    EXPECT_EQ(Formatter::formatOtherPhoneNumber(QString(30, u'9')), QString(26, u'9'));
    EXPECT_EQ(Formatter::formatOtherPhoneNumber(u"no digits"_s), u""_s);

    using Mode = Formatter::Mode;
    EXPECT_EQ(Formatter::liveFormattedPhoneNumber(u"+1 555123456"_s, u"+1"_s, u"United States"_s, Mode::Formatted),
              u"+1 (555) 123-456"_s);
    EXPECT_EQ(Formatter::liveFormattedPhoneNumber(u"+1 5551234567"_s, u"+1"_s, u"Canada"_s, Mode::Formatted),
              u"+1 5551234567"_s) << "only the United States get the grouped form";
    EXPECT_EQ(Formatter::liveFormattedPhoneNumber(u"+ 345 949-1234"_s, u"+ 345"_s, u"Cayman Islands"_s, Mode::Formatted),
              u"+ 345 9491234"_s);
    EXPECT_EQ(Formatter::liveFormattedPhoneNumber(u"+44 20 7946"_s, u"+44"_s, u"United Kingdom"_s, Mode::Raw), u"207946"_s);
    EXPECT_EQ(Formatter::liveFormattedPhoneNumber(u"+44 "_s, u"+44"_s, u"United Kingdom"_s, Mode::Formatted), u""_s);
}

TEST(PhoneNumberPIN, IsFourDigitsOfTheDigestAndNeedsAVerifiedNumber)
{
    // Values derived independently (MD5 of token, number and seed; first 40 bits mod 10000).
    EXPECT_EQ(Manager::verificationPIN(u"tok-Ω"_s, u"5551234567"_s, 4), u"0562"_s) << "leading zero kept";
    EXPECT_EQ(Manager::verificationPIN(u"tok-Ω"_s, u"5551234567"_s, 9999), u"2914"_s);
    EXPECT_EQ(Manager::verificationPIN(u""_s, u"+1 5551234567"_s, 1), u"4449"_s);

    Manager &manager = Manager::sharedManager();
    EXPECT_FALSE(manager.validatePIN(u""_s));
    EXPECT_FALSE(manager.validatePIN(u"0000"_s));
    EXPECT_GE(manager.seed(), 1);
    EXPECT_LE(manager.seed(), 9999);

    // Without a token no request leaves and the answer is no.
    std::optional<bool> answer;
    manager.validatePhoneNumber(u"5551234567"_s, [&answer](bool verified) { answer = verified; });
    EXPECT_EQ(answer, false);
    EXPECT_FALSE(manager.lastPhoneNumber());
}

class PhoneVerificationTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!test::OSTDevServerProcess::isAvailable())
            GTEST_SKIP() << "ostrel-devserver is not built";
        ASSERT_TRUE(server.start());
        server.installMainBundle(folder.filePath(u"bundle"_s));
        Manager::connectTokenSource([] { return std::optional<QString>(u"phone-test-token"_s); });
    }

    // Verifies `number` and waits for the answer, which arrives on the network queue.
    bool verify(const QString &number)
    {
        std::atomic<int> answer = -1;
        Manager::sharedManager().validatePhoneNumber(number, [&answer](bool verified) { answer = verified ? 1 : 0; });
        EXPECT_TRUE(test::waitUntil([&answer] { return answer != -1; }));
        return answer == 1;
    }

    QTemporaryDir folder;
    test::OSTDevServerProcess server;
};

TEST_F(PhoneVerificationTest, ThePINTheServiceSendsIsAcceptedAndOnlyThatOne)
{
    Manager &manager = Manager::sharedManager();
    const QString number = u"5551234567"_s;
    ASSERT_TRUE(verify(number));

    const QList<test::OSTRecordedRequest> requests = server.recordedRequests(u"verify_phone_number"_s);
    ASSERT_EQ(requests.size(), 1);
    EXPECT_EQ(requests.first().parameters.value(u"phone_number"_s), number);
    EXPECT_EQ(requests.first().parameters.value(u"seed"_s), QString::number(manager.seed()));
    EXPECT_EQ(requests.first().parameters.value(u"token"_s), u"phone-test-token"_s);

    const std::optional<QString> sentPIN = server.verificationPin(number);
    ASSERT_TRUE(sentPIN);
    EXPECT_TRUE(test::waitUntil([&] { return server.standardOutput().contains(u"pin: %1 %2"_s.arg(number, *sentPIN)); }))
        << "the service logs the PIN it sends";
    EXPECT_TRUE(manager.validatePIN(*sentPIN));
    EXPECT_EQ(manager.lastPhoneNumber(), number);
    const QString wrongPIN = u"%1"_s.arg((sentPIN->toInt() + 1) % 10000, 4, 10, QLatin1Char('0'));
    EXPECT_FALSE(manager.validatePIN(wrongPIN));
    EXPECT_FALSE(manager.validatePIN(sentPIN->left(3)));

    // The same number again needs no new PIN; a reset forgets it and draws a new seed.
    ASSERT_TRUE(verify(number));
    EXPECT_EQ(server.recordedRequests(u"verify_phone_number"_s).size(), 1);
    manager.reset();
    EXPECT_FALSE(manager.validatePIN(*sentPIN));
    EXPECT_FALSE(manager.lastPhoneNumber());
    ASSERT_TRUE(verify(number));
    EXPECT_EQ(server.recordedRequests(u"verify_phone_number"_s).size(), 2);
    EXPECT_TRUE(manager.validatePIN(*server.verificationPin(number)));
}

TEST_F(PhoneVerificationTest, AFailedRequestKeepsTheEarlierNumberAndCanBeRetried)
{
    Manager &manager = Manager::sharedManager();
    ASSERT_TRUE(verify(u"5550000001"_s));
    const QString firstPIN = *manager.lastVerificationPIN();

    ASSERT_TRUE(server.setFault({{u"endpoint"_s, u"verify_phone_number"_s}, {u"status"_s, 500}, {u"times"_s, 1}}));
    EXPECT_FALSE(verify(u"5550000002"_s));
    ASSERT_TRUE(server.setFault({{u"endpoint"_s, u"verify_phone_number"_s}, {u"body"_s, u"garbage"_s}, {u"times"_s, 1}}));
    EXPECT_FALSE(verify(u"5550000002"_s));
    EXPECT_EQ(manager.lastPhoneNumber(), u"5550000001"_s);
    EXPECT_TRUE(manager.validatePIN(firstPIN));

    ASSERT_TRUE(server.setFault({{u"endpoint"_s, u"verify_phone_number"_s}, {u"connection"_s, u"truncate"_s}, {u"times"_s, 1}}));
    EXPECT_FALSE(verify(u"5550000002"_s)) << "the connection closed mid-answer";
    ASSERT_TRUE(verify(u"5550000002"_s)) << "a retry goes through";
    EXPECT_TRUE(manager.validatePIN(*server.verificationPin(u"5550000002"_s)));
    EXPECT_FALSE(manager.validatePIN(firstPIN));
}

TEST_F(PhoneVerificationTest, ConcurrentVerificationsLeaveOneConsistentNumberAndPIN)
{
    Manager &manager = Manager::sharedManager();
    constexpr int threadCount = 6;
    std::atomic<int> answered = 0;
    std::atomic<int> accepted = 0;
    std::vector<std::thread> threads;
    for (int index = 0; index < threadCount; ++index) {
        threads.emplace_back([index, &manager, &answered, &accepted] {
            manager.validatePhoneNumber(u"55500001%1"_s.arg(index, 2, 10, QLatin1Char('0')), [&](bool verified) {
                accepted += verified ? 1 : 0;
                ++answered;
            });
            // Readers on other threads meanwhile see either nothing or a whole pair.
            (void)manager.validatePIN(u"0000"_s);
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    ASSERT_TRUE(test::waitUntil([&answered] { return answered == threadCount; }));
    EXPECT_EQ(accepted, threadCount);
    EXPECT_EQ(server.recordedRequests(u"verify_phone_number"_s).size(), threadCount);

    const std::optional<QString> number = manager.lastPhoneNumber();
    ASSERT_TRUE(number);
    EXPECT_TRUE(number->startsWith(u"55500001"_s));
    EXPECT_EQ(manager.lastVerificationPIN(), server.verificationPin(*number)) << "the number and its PIN belong together";
    EXPECT_TRUE(manager.validatePIN(*server.verificationPin(*number)));
}

} // namespace
} // namespace ostrel
