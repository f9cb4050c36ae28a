// The experience model with a scripted view and no widgets: moving through and between flows, the
// checks before a screen is left (unique fields, the phone number's PIN request) with answers at
// once, from other threads, twice or never, and the hand-over to the host at the end of a flow.

#include "OSTModelTestSupport.h"

#include "experience/OSTExperienceManager.h"
#include "experience/OSTFlow.h"
#include "experience/OSTFlowManager.h"
#include "model/OSTExperienceModel.h"
#include "support/OSTEventRecorder.h"
#include "support/OSTTestSupport.h"
#include "users/OSTUserManager.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <thread>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

// A welcome screen from which a three-screen sign-up starts (unique e-mail, phone number, PIN);
// a recover-password flow whose screen is missing.
void loadFlows()
{
    OSTFlowManager::sharedManager().loadFlows(test::jsonObject(R"({
        "install": {"name": "Install", "steps": ["welcome"], "properties": {"flowEndAction": {"func": "close"}}},
        "SIGNUP": {"name": "Sign Up", "steps": ["account", "phone", "pin"]},
        "recoverpw": {"steps": ["missing"]}})"), test::jsonObject(R"({
        "welcome": {"json_data": "{}"},
        "account": {"json_data": "{\"inputs\": {\"email\": {\"isUnique\": \"true\"}, \"password\": {\"secureTextEntry\": \"true\"}}}"},
        "phone": {"json_data": "{\"inputs\": {\"phone\": {\"textType\": \"phoneNumberValidated\"}}}"},
        "pin": {"json_data": "{\"inputs\": {\"pin\": {\"textType\": \"phoneNumberPin\"}}}"}})"));
}

// The host keeps its completions; the test answers them when and where it likes.
class Host final : public OSTExperienceDelegate {
public:
    void validateUniqueFields(const QVariantMap &, ValidationCompletion answer) override
    {
        ++checks;
        unique = std::move(answer);
    }
    void signUpWithFields(const QVariantMap &fields, AuthenticationCompletion answer) override
    {
        logInWithFields(fields, std::move(answer));
    }
    void logInWithFields(const QVariantMap &fields, AuthenticationCompletion answer) override
    {
        handedOver = fields;
        authenticated = std::move(answer);
    }
    void willCloseWithFields(const QVariantMap &fields) override { closedWith = fields; }

    int checks = 0;
    ValidationCompletion unique;
    AuthenticationCompletion authenticated;
    std::optional<QVariantMap> handedOver, closedWith;
};

OSTValidationResult refusing(const QString &field)
{
    OSTValidationResult result;
    result.invalidateField(field, field + u" refused"_s);
    return result;
}

// Answers twice from another thread, as a careless host might; the first answer must count.
template <typename Answer, typename... First, typename... Second>
void answerTwiceFromAThread(const Answer &answer, std::tuple<First...> first, std::tuple<Second...> second)
{
    std::thread([&] {
        std::apply(answer, first);
        std::apply(answer, second);
    }).join();
    QCoreApplication::processEvents();
}

class ExperienceModel : public ::testing::Test {
protected:
    void SetUp() override
    {
        loadFlows();
        OSTExperienceManager::sharedManager().setExperienceDelegate(m_host);
        // Without a flow of its own, the logged-out experience is the install experience.
        const auto start = OSTExperienceModel::startOfType(OSTExperienceTypeLoggedOut);
        ASSERT_TRUE(start);
        m_model = std::make_unique<OSTExperienceModel>(
            m_view, *m_view.makeScreen(start->flow->screens().front()), start->experienceKey,
            [this](const QString &number, std::function<void(bool)> verified) {
                m_numbers << number;
                m_verified = std::move(verified);
            });
        m_model->experienceDidAppear();
    }

    test::ScriptedScreen &top() { return m_view.screenOf(m_model->topScreen()); }
    void type(const QString &input, const QString &text) { top().input(input).type(text); }
    void fillAccount(const QString &email) { type(u"email"_s, email); type(u"password"_s, u"secret"_s); }
    void next() { m_model->validateScreen(*m_model->topScreen()); }
    // What a screen's "startFlow" button does.
    void startFlow(const QString &key)
    {
        top().model->handleAction(std::make_shared<const OSTAction>(
            QVariantMap{{u"func"_s, u"startFlow"_s}, {u"params"_s, QVariantMap{{u"flowName"_s, key}}}}));
    }

    test::OSTEventRecorder m_events;
    test::ScriptedExperienceView m_view;
    std::shared_ptr<Host> m_host = std::make_shared<Host>();
    QStringList m_numbers;
    std::function<void(bool)> m_verified;
    std::unique_ptr<OSTExperienceModel> m_model; // declared last: it goes before its view
};

TEST_F(ExperienceModel, MovesForwardBackIntoAndOutOfFlowsAndClosesFromTheBottom)
{
    m_model->experienceDidAppear();
    EXPECT_EQ(m_events.parametersOf(u"OST Install Flow Start"_s).size(), 1u) << "the first flow starts once";
    startFlow(u"SIGNUP"_s);
    m_model->startFlowWithKey(u"nowhere"_s);
    m_model->startFlowWithKey(u"recoverpw"_s);
    EXPECT_FALSE(OSTExperienceModel::startOfType(OSTExperienceTypeRecoverPassword)) << "its flow has no screens";
    type(u"email"_s, u"ada@example.com"_s);
    m_model->goToPreviousScreen();
    startFlow(u"SIGNUP"_s);
    EXPECT_FALSE(top().input(u"email"_s).value().isValid()) << "a flow left backwards starts empty again";

    m_view.unbuildable << u"phone"_s; // a screen that cannot be drawn keeps the user where they are
    fillAccount(u"ada@example.com"_s);
    next();
    m_host->unique(OSTValidationResult());
    m_view.unbuildable.clear();
    next();
    m_host->unique(OSTValidationResult());
    const auto &variables = OSTExperienceManager::sharedManager().dynamicVariables();
    EXPECT_EQ(variables.value(u"email"_s), u"ada@example.com"_s) << "savable fields become dynamic variables";

    type(u"phone"_s, u"(415) 555-0100"_s);
    next(); // never answered: the user can still leave, and a late answer finds the experience gone
    m_model->goToPreviousFlow();
    m_model->goToPreviousScreen();
    m_model->close();
    m_verified(true);
    EXPECT_EQ(m_view.takeCalls(), "push account, pop, push account, overlay on, overlay off, overlay on, push phone, "
                                  "overlay off, overlay on, pop to welcome, overlay off, dismiss");
    EXPECT_EQ(m_host->closedWith, QVariantMap()) << "closed once, from the welcome screen";
}

TEST_F(ExperienceModel, ScreensAreLeftOnceTheHostAndThePhoneVerificationAgreeAndTheFlowEndsWithTheHost)
{
    startFlow(u"SIGNUP"_s);
    OSTScreenModel &account = *top().model;
    next();
    top().model->screenTapped();
    EXPECT_EQ(top().errorMessage, u"Invalid input."_s) << "an invalid screen shows its own errors";
    fillAccount(u"taken@example.com"_s);
    next();
    m_host->unique(refusing(u"email"_s));
    EXPECT_EQ(top().errorMessage, u"email refused"_s);
    type(u"email"_s, u"ada@example.com"_s);
    next();
    next();
    answerTwiceFromAThread(m_host->unique, std::tuple{OSTValidationResult()}, std::tuple{refusing(u"email"_s)});
    m_model->validateScreen(account); // as a Return in the screen that slides away
    EXPECT_EQ(m_host->checks, 2) << "none for the invalid screen, a second next, or a screen no longer on top";

    type(u"phone"_s, u"(415) 555-0100"_s);
    next();
    answerTwiceFromAThread(m_verified, std::tuple{false}, std::tuple{true});
    EXPECT_FALSE(top().nextEnabled) << "the number the service refused is marked invalid";
    type(u"phone"_s, u"(415) 555-0101"_s);
    next();
    m_verified(true);
    EXPECT_EQ(m_numbers, (QStringList{u"4155550100"_s, u"4155550101"_s}));

    type(u"pin"_s, u"1234"_s);
    next();
    EXPECT_EQ(m_host->handedOver, (QVariantMap{{u"email"_s, u"ada@example.com"_s}, {u"password"_s, u"secret"_s},
                                               {u"phone"_s, u"(415) 555-0101"_s}}));
    // The host refuses the e-mail address: back to its screen, then forward again.
    answerTwiceFromAThread(m_host->authenticated, std::tuple{refusing(u"email"_s), QString()},
                           std::tuple{OSTValidationResult(), u"someone-else"_s});
    type(u"email"_s, u"ada@example.com"_s);
    next();
    m_host->unique(OSTValidationResult());
    next();
    m_verified(true);
    next();
    answerTwiceFromAThread(m_host->authenticated, std::tuple{OSTValidationResult(), u"new-user"_s},
                           std::tuple{OSTValidationResult(), u"someone-else"_s});
    const OSTUser user = OSTUserManager::sharedManager().currentUser();
    EXPECT_EQ(user.userID(), u"new-user"_s);
    EXPECT_EQ(user.properties(), (QVariantMap{{u"email"_s, u"ada@example.com"_s}, {u"phone"_s, u"(415) 555-0101"_s}}));
    EXPECT_EQ(m_events.parametersOf(u"OST Sign Up Flow Complete"_s).at(0).value(u"screen_key"_s), u"pin"_s);
    EXPECT_EQ(m_view.takeCalls(), "push account, overlay on, overlay off, overlay on, push phone, overlay off, "
                                  "overlay on, overlay off, overlay on, push pin, overlay off, overlay on, overlay off, "
                                  "pop to account, overlay on, push phone, overlay off, overlay on, push pin, overlay off, "
                                  "overlay on, overlay off, pop to welcome")
        << "a flow without an end action returns to where it started";
}

} // namespace
} // namespace ostrel
