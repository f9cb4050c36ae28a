// What a screen of an experience reaches: the experience manager's variables, and the host's
// answer to a social log-in, brought to the GUI thread once.

#include "model/OSTScreenEnvironment.h"

#include "OSTScreenTestSupport.h"

#include "experience/OSTExperienceManager.h"
#include "render/OSTLabel.h"

#include <QCoreApplication>
#include <QThread>

#include <gtest/gtest.h>

#include <thread>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

class AnsweringTwiceFromAThread final : public OSTExperienceDelegate {
public:
    void authenticateFacebookWithFields(const QVariantMap &fields, AuthenticationCompletion completion) override
    {
        received = fields;
        std::thread([completion] {
            OSTValidationResult refused;
            refused.invalidateField(u"email"_s, u"Use your work address"_s);
            completion(refused, u"first"_s);
            completion(OSTValidationResult(), u"second"_s);
        }).join();
    }
    QVariantMap received;
};

} // namespace

TEST(ScreenEnvironment, ScreensReachTheVariablesAndTheHostsAnswerArrivesOnceOnTheGuiThread)
{
    const OSTScreenModel::Environment environment = OSTScreenEnvironment::forExperience({320, 480});
    EXPECT_EQ(environment.area, QSizeF(320, 480));
    OSTExperienceManager::sharedManager().appendDynamicVariables({{u"first_name"_s, u"Ada"_s}});
    EXPECT_EQ(environment.substitution(u"Hi {first_name}"_s), u"Hi Ada"_s);

    struct Answer {
        std::optional<OSTValidationResult> result;
        QString userID;
        QThread *thread = nullptr;
    };
    QList<Answer> answers;
    const auto record = [&answers](const std::optional<OSTValidationResult> &result, const QString &userID) {
        answers.append({result, userID, QThread::currentThread()});
    };

    // A host without its own check accepts the account at once.
    environment.authenticate({{u"email"_s, u"ada@example.com"_s}}, record);
    ASSERT_EQ(answers.size(), 1);
    EXPECT_FALSE(answers.front().result);
    EXPECT_TRUE(answers.front().userID.isEmpty());

    auto host = std::make_shared<AnsweringTwiceFromAThread>();
    OSTExperienceManager::sharedManager().setExperienceDelegate(host);
    environment.authenticate({{u"email"_s, u"ada@example.com"_s}}, record);
    EXPECT_EQ(host->received.value(u"email"_s), u"ada@example.com"_s);
    EXPECT_EQ(answers.size(), 1) << "an answer from another thread waits for the GUI thread";
    QCoreApplication::processEvents();
    ASSERT_EQ(answers.size(), 2) << "the second answer does not count";
    ASSERT_TRUE(answers.back().result);
    EXPECT_FALSE(answers.back().result->isValid());
    EXPECT_EQ(answers.back().userID, u"first"_s);
    EXPECT_EQ(answers.back().thread, QCoreApplication::instance()->thread());
}

TEST(ScreenEnvironment, AVariableHoldingQuotesBackslashesAndLineBreaksShowsOnTheScreenAsItself)
{
    const OSTScreenModel::Environment environment = OSTScreenEnvironment::forExperience({375, 667});
    const QString name = u"Ada \"Countess\" Lovelace \\ of Ockham\n1815"_s;
    OSTExperienceManager::sharedManager().appendDynamicVariables({{u"first_name"_s, name}});
    const auto view = test::screenView(uR"({"labels": {"hello": {"text": "Hi {first_name}"}}})"_s, {375, 667},
                                       environment.substitution);
    ASSERT_TRUE(view) << "the screen's JSON still parses";
    EXPECT_EQ(qobject_cast<OSTLabel *>(view->views().value(u"hello"_s))->text(), u"Hi "_s + name);
}
