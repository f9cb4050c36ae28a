// Whole experiences on screen through the public API, against the development service: the
// automatic install experience, flows started from a screen and left again, the host's checks and
// hand-overs, phone verification by PIN, and the launch cover.

#include <ostrel/Ostrel.h>

#include "experience/OSTExperienceManager.h"
#include "experience/OSTScreen.h"
#include "model/OSTExperienceModel.h"
#include "platform/OSTApplication.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTEventRecorder.h"
#include "support/OSTTestSupport.h"
#include "users/OSTUserManager.h"
#include "widgets/OSTExperienceController.h"
#include "widgets/OSTLabel.h"
#include "widgets/OSTLaunchController.h"
#include "widgets/OSTLoadingOverlay.h"
#include "widgets/OSTModalPresenter.h"
#include "widgets/OSTRootController.h"
#include "widgets/OSTRootPresentation.h"
#include "widgets/OSTRootPresenter.h"

#include <QAbstractAnimation>
#include <QAbstractButton>
#include <QFile>
#include <QJsonDocument>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>
#include <QWindow>

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

// An install flow whose welcome screen starts a three-screen sign-up flow (unique e-mail, phone
// number, PIN) and a one-screen log-in flow.
QVariantMap sampleExperience()
{
    QFile file(QStringLiteral(QT_TESTCASE_SOURCEDIR "/widgets/samples/experience/experience.json"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return QJsonDocument::fromJson(file.readAll()).toVariant().toMap();
}

// The host's side: a sign-up answered from another thread (twice, which must count once), a
// log-in answered at once or never, and an e-mail address that is already taken.
class HostDelegate final : public OSTExperienceDelegate {
public:
    enum class LogIn { Accept, NeverAnswer };
    LogIn logIn = LogIn::Accept;
    QVariantMap signUpFields, logInFields;
    std::optional<QVariantMap> closedWith;
    AuthenticationCompletion unanswered;

    int uniqueChecks = 0;

    void validateUniqueFields(const QVariantMap &fields, ValidationCompletion completion) override
    {
        ++uniqueChecks;
        OSTValidationResult result;
        if (fields.value(u"email"_s) == u"taken@example.com"_s)
            result.invalidateField(u"email"_s, u"This address is already registered."_s);
        completion(result);
    }
    void signUpWithFields(const QVariantMap &fields, AuthenticationCompletion completion) override
    {
        signUpFields = fields;
        std::thread([completion] {
            completion(OSTValidationResult(), u"new-user"_s);
            completion(OSTValidationResult(), u"someone-else"_s);
        }).detach();
    }
    void logInWithFields(const QVariantMap &fields, AuthenticationCompletion completion) override
    {
        logInFields = fields;
        if (logIn == LogIn::Accept)
            completion(OSTValidationResult(), u"ada"_s);
        else
            unanswered = completion;
    }
    void willCloseWithFields(const QVariantMap &fields) override { closedWith = fields; }
};

// The production presenter, remembering its last presentation so the test can end animations.
class WatchedPresenter final : public OSTExperiencePresenter {
public:
    bool drawsOver(const OSTExperienceSettings &settings, const QWindow *window) const override
    {
        return m_presenter.drawsOver(settings, window);
    }
    std::shared_ptr<Presentation> presentationWithSettings(const OSTExperienceSettings &settings) override
    {
        auto presentation = std::make_shared<OSTRootPresentation>(settings);
        last = presentation;
        return presentation;
    }
    std::shared_ptr<Presentation> presentationWithType(int type) override { return m_presenter.presentationWithType(type); }
    std::weak_ptr<OSTRootPresentation> last;

private:
    OSTRootPresenter m_presenter;
};

void finish(QAbstractAnimation *animation)
{
    if (animation)
        animation->setCurrentTime(animation->totalDuration());
}

class ExperienceOnScreen : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!test::OSTDevServerProcess::isAvailable())
            GTEST_SKIP() << "ostrel-devserver is not built";
        m_server.writeExperience(sampleExperience());
        ASSERT_TRUE(m_server.start());
    }

    void startSDK(QVariantMap info = {}, const std::function<void(const QString &bundle)> &addFiles = {})
    {
        info.insert(u"OstrelToken"_s, u"test-token"_s);
        const QString bundle = m_server.installMainBundle(m_bundle.path(), info);
        if (addFiles)
            addFiles(bundle);
        m_window.resize(375, 667);
        m_window.show();
        // Fields show their errors once editing ends, which needs focus, which needs an active window.
        m_window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
        OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Host);
        Ostrel::start();
        OSTExperienceManager::sharedManager().setPresenter(m_presenter);
        Ostrel::setExperienceDelegate(m_host);
    }

    void finishLaunch()
    {
        std::optional<bool> launched;
        Ostrel::executeAfterLaunch([&](bool success) { launched = success; });
        Ostrel::applicationDidFinishLaunching();
        ASSERT_TRUE(test::waitUntil([&] { return launched.has_value(); }, 30000));
        ASSERT_TRUE(*launched);
    }

    OSTRootController *root() const
    {
        const auto presentation = m_presenter->last.lock();
        return presentation ? presentation->rootController() : nullptr;
    }

    OSTExperienceController *experience() const
    {
        return root() ? qobject_cast<OSTExperienceController *>(root()->experienceController()) : nullptr;
    }

    // Ends every running transition, so the stack and the cover are where they are going.
    void settle() const
    {
        for (int round = 0; round < 4; ++round) {
            QCoreApplication::processEvents();
            if (OSTRootController *controller = root()) {
                finish(controller->presenter()->runningTransition());
                finish(controller->runningCrossFade());
            }
            if (OSTExperienceController *controller = experience())
                finish(controller->runningTransition());
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }

    QString currentScreenKey() const
    {
        const auto screen = OSTExperienceManager::sharedManager().currentScreen();
        return screen ? screen->key() : QString();
    }

    // The widget called `key` on the screen on display.
    template <typename Widget>
    Widget *onScreen(const QString &key) const
    {
        OSTExperienceController *controller = experience();
        auto *top = controller ? qobject_cast<OSTScreenController *>(controller->topViewController()) : nullptr;
        return top ? top->view()->findChild<Widget *>(key) : nullptr;
    }

    void tap(const QString &key)
    {
        auto *target = onScreen<QAbstractButton>(key);
        ASSERT_NE(target, nullptr) << key.toStdString() << " on " << currentScreenKey().toStdString();
        QTest::mouseClick(target, Qt::LeftButton);
        settle();
    }

    void type(const QString &key, const QString &text)
    {
        auto *target = onScreen<QLineEdit>(key);
        ASSERT_NE(target, nullptr) << key.toStdString() << " on " << currentScreenKey().toStdString();
        target->setFocus();
        target->selectAll();
        QTest::keyClicks(target, text);
    }

    // The events the service stored, by name; waits until every one of `expected` arrived.
    QMap<QString, QVariantMap> storedEvents(const QStringList &expected)
    {
        Ostrel::flushEvents();
        QMap<QString, QVariantMap> byName;
        test::waitUntil([&] {
            for (const QVariantMap &event : m_server.storedEvents())
                byName.insert(event.value(u"event_type"_s).toString(), event);
            return std::ranges::all_of(expected, [&](const QString &name) { return byName.contains(name); });
        });
        return byName;
    }

    test::OSTDevServerProcess m_server;
    test::OSTEventRecorder m_events;
    QTemporaryDir m_bundle;
    QWidget m_window;
    std::shared_ptr<WatchedPresenter> m_presenter = std::make_shared<WatchedPresenter>();
    std::shared_ptr<HostDelegate> m_host = std::make_shared<HostDelegate>();
};

} // namespace

TEST_F(ExperienceOnScreen, TheInstallExperienceSignsUpThroughTheHostAndReportsItsEvents)
{
    startSDK();
    Ostrel::applicationDidChangeState(OSTApplicationState::Active);
    finishLaunch();
    std::vector<bool> presented;
    Ostrel::presentExperienceWithCompletion([&](bool shown) { presented.push_back(shown); });
    ASSERT_TRUE(test::waitUntil([&] { return !presented.empty(); }));
    Ostrel::presentExperienceWithCompletion([&](bool shown) { presented.push_back(shown); });
    settle();
    EXPECT_EQ(presented, (std::vector<bool>{true, true})) << "a second presentation replaces the first";
    EXPECT_EQ(currentScreenKey(), u"welcome"_s);

    tap(u"signup"_s);
    EXPECT_EQ(currentScreenKey(), u"account"_s);
    type(u"email"_s, u"taken@example.com"_s);
    type(u"password"_s, u"secret"_s);
    tap(u"next"_s);
    EXPECT_EQ(currentScreenKey(), u"account"_s) << "the host's answer keeps the user here";
    EXPECT_EQ(onScreen<OSTLabel>(u"errorMessage"_s)->text(), u"This address is already registered."_s);
    EXPECT_FALSE(experience()->loadingOverlay() && experience()->loadingOverlay()->isPresented())
        << "an answer given at once shows no overlay";

    type(u"email"_s, u"ada@example.com"_s);
    tap(u"next"_s);
    ASSERT_EQ(currentScreenKey(), u"phone"_s);
    type(u"phone"_s, u"4155550100"_s);
    // The service holds its answer until its clock moves, so the overlay is seen however fast it is.
    ASSERT_TRUE(m_server.setFault({{u"endpoint"_s, u"verify_phone_number"_s}, {u"delay"_s, 1}, {u"times"_s, 1}}));
    tap(u"next"_s);
    ASSERT_NE(experience()->loadingOverlay(), nullptr);
    EXPECT_TRUE(experience()->loadingOverlay()->isPresented()) << "waiting for the service to send the PIN";
    ASSERT_TRUE(test::waitUntil([&] { return !m_server.recordedRequests(u"verify_phone_number"_s).isEmpty(); }));
    ASSERT_TRUE(m_server.advanceClock(1));
    ASSERT_TRUE(test::waitUntil([&] { return currentScreenKey() == u"pin"_s; }));
    settle();
    const std::optional<QString> pin = m_server.verificationPin(u"4155550100"_s);
    ASSERT_TRUE(pin) << m_server.standardOutput().toStdString();
    type(u"pin"_s, *pin); // a complete, correct PIN submits itself

    ASSERT_TRUE(test::waitUntil([&] { return currentScreenKey() == u"welcome"_s; })) << "back to where the flow started";
    EXPECT_EQ(m_host->signUpFields.value(u"email"_s), u"ada@example.com"_s);
    EXPECT_EQ(m_host->signUpFields.value(u"password"_s), u"secret"_s);
    EXPECT_FALSE(m_host->signUpFields.contains(u"pin"_s));
    const OSTUser user = Ostrel::currentUser();
    EXPECT_EQ(user.userID(), u"new-user"_s) << "the second answer does not count";
    EXPECT_EQ(user.properties().value(u"email"_s), u"ada@example.com"_s);
    EXPECT_FALSE(user.properties().contains(u"password"_s)) << "secrets are not saved";

    const QStringList expected = {u"OST Install Flow Start"_s,   u"OST Welcome Displayed"_s, u"OST Welcome Action Tapped"_s,
                                  u"OST Account Displayed"_s,    u"OST Phone Displayed"_s,   u"OST Pin Displayed"_s,
                                  u"OST Signup"_s,               u"OST Sign Up Flow Complete"_s};
    QStringList inOrder;
    for (const QString &name : m_events.names())
        if (expected.contains(name) && !inOrder.contains(name))
            inOrder << name;
    EXPECT_EQ(inOrder, expected) << m_events.names().join(u", "_s).toStdString();
    EXPECT_EQ(m_events.parametersOf(u"OST Sign Up Flow Start"_s).size(), 0u) << "only the first flow reports its start";

    const QMap<QString, QVariantMap> stored = storedEvents(expected);
    for (const QString &name : expected)
        EXPECT_TRUE(stored.contains(name)) << name.toStdString() << " did not reach the service";
    for (const QString &name : {u"OST Signup"_s, u"OST Sign Up Flow Complete"_s}) {
        const QVariantMap event = stored.value(name);
        EXPECT_EQ(event.value(u"flow_key"_s), u"SIGNUP"_s) << name.toStdString();
        EXPECT_EQ(event.value(u"screen_key"_s), u"pin"_s) << name.toStdString();
        EXPECT_EQ(event.value(u"user_id"_s), u"new-user"_s) << name.toStdString();
    }
    EXPECT_EQ(stored.value(u"OST Welcome Action Tapped"_s).value(u"button_id"_s), u"signup"_s);
}

TEST_F(ExperienceOnScreen, LeavingAFlowBackwardsForgetsItsFieldsAndALogInWaitsForTheHost)
{
    startSDK();
    Ostrel::applicationDidChangeState(OSTApplicationState::Active);
    finishLaunch();
    OSTExperienceSettings settings;
    settings.shouldPresentAnimated = false;
    Ostrel::presentExperienceWithSettings(settings);
    ASSERT_TRUE(test::waitUntil([&] { return currentScreenKey() == u"welcome"_s; }));

    tap(u"login"_s);
    ASSERT_EQ(currentScreenKey(), u"credentials"_s);
    type(u"email"_s, u"someone@example.com"_s);
    tap(u"back"_s);
    EXPECT_EQ(currentScreenKey(), u"welcome"_s);
    tap(u"login"_s);
    EXPECT_EQ(onScreen<QLineEdit>(u"email"_s)->text(), QString()) << "a flow entered again starts empty";

    // A host that never answers: the overlay stays, Escape still closes, a late answer is dropped.
    m_host->logIn = HostDelegate::LogIn::NeverAnswer;
    type(u"email"_s, u"ada@example.com"_s);
    type(u"password"_s, u"secret"_s);
    tap(u"next"_s);
    ASSERT_NE(experience()->loadingOverlay(), nullptr);
    ASSERT_TRUE(experience()->loadingOverlay()->isPresented());
    QTest::keyClick(experience()->loadingOverlay(), Qt::Key_Escape);
    settle();
    EXPECT_FALSE(Ostrel::isPresentingExperience());
    EXPECT_EQ(m_host->closedWith, (QVariantMap{{u"email"_s, u"ada@example.com"_s}, {u"password"_s, u"secret"_s}}));
    ASSERT_TRUE(m_host->unanswered);
    m_host->unanswered(OSTValidationResult(), u"late"_s);
    QCoreApplication::processEvents();
    EXPECT_FALSE(OSTUserManager::sharedManager().isLoggedIn());

    // The log-in experience by type: the host's answer logs the user in and the flow closes.
    m_host->logIn = HostDelegate::LogIn::Accept;
    settings.experienceType = OSTExperienceTypeLogin;
    Ostrel::presentExperienceWithSettings(settings);
    ASSERT_TRUE(test::waitUntil([&] { return currentScreenKey() == u"credentials"_s; }));
    type(u"email"_s, u"ada@example.com"_s);
    type(u"password"_s, u"secret"_s);
    tap(u"next"_s);
    EXPECT_EQ(m_host->logInFields, (QVariantMap{{u"email"_s, u"ada@example.com"_s}, {u"password"_s, u"secret"_s}}));
    EXPECT_TRUE(OSTUserManager::sharedManager().isLoggedIn());
    EXPECT_EQ(Ostrel::currentUser().userID(), u"ada"_s);
    settle();
    EXPECT_FALSE(Ostrel::isPresentingExperience()) << "the log-in flow ends by closing";
}

TEST_F(ExperienceOnScreen, ASecondNextDuringTheSlideTakesNoSecondStep)
{
    startSDK();
    Ostrel::applicationDidChangeState(OSTApplicationState::Active);
    finishLaunch();
    Ostrel::presentExperienceWithCompletion([](bool) {});
    ASSERT_TRUE(test::waitUntil([&] { return currentScreenKey() == u"welcome"_s; }));
    settle();
    tap(u"signup"_s);
    ASSERT_EQ(currentScreenKey(), u"account"_s);
    type(u"email"_s, u"ada@example.com"_s);
    type(u"password"_s, u"secret"_s);

    // A double click, through the window as a person's: the second click lands where the
    // screen that slides away still shows its button.
    auto *next = onScreen<QAbstractButton>(u"next"_s);
    ASSERT_NE(next, nullptr);
    QWindow *window = next->window()->windowHandle();
    const QPoint onNext = next->mapTo(next->window(), next->rect().center());
    QTest::mouseClick(window, Qt::LeftButton, {}, onNext);
    ASSERT_NE(experience()->runningTransition(), nullptr) << "the next screen slides in";
    QTest::mouseClick(window, Qt::LeftButton, {}, onNext);
    // A Return in the outgoing screen's last field asks for the same step again.
    experience()->model().validateScreen(
        qobject_cast<OSTScreenController *>(experience()->viewControllers().at(1))->screenModel());
    settle();
    EXPECT_EQ(currentScreenKey(), u"phone"_s) << "one step, not two";
    EXPECT_EQ(experience()->viewControllers().size(), 3);
    EXPECT_EQ(m_host->uniqueChecks, 1) << "the unique fields were checked once";
    EXPECT_EQ(m_events.parametersOf(u"OST Account Action Tapped"_s).size(), 1u) << "one tap event for one step";
    EXPECT_TRUE(Ostrel::isPresentingExperience());
}

TEST_F(ExperienceOnScreen, APresentationBeforeTheLaunchShowsTheHostsFormThenCrossFades)
{
    ASSERT_FALSE(OSTApplication::hasBecomeActiveOnce()) << "run this test in a process of its own";
    startSDK({{u"UILaunchStoryboardName"_s, u"Launch"_s}}, [](const QString &bundle) {
        test::writeFile(bundle + u"/Launch.ui"_s, R"(<ui version="4.0"><class>Launch</class>
            <widget class="QLabel" name="launchForm"><property name="text"><string>Starting</string></property>
            </widget></ui>)");
    });
    std::optional<bool> presented;
    Ostrel::presentExperienceWithCompletion([&](bool shown) { presented = shown; });
    QCoreApplication::processEvents();
    ASSERT_NE(root(), nullptr);
    ASSERT_NE(root()->launchController(), nullptr);
    QWidget *form = m_window.findChild<QWidget *>(u"launchForm"_s);
    ASSERT_NE(form, nullptr);
    EXPECT_TRUE(form->isVisibleTo(&m_window));
    EXPECT_FALSE(presented);

    finishLaunch();
    ASSERT_TRUE(test::waitUntil([&] { return root()->runningCrossFade() != nullptr; }));
    EXPECT_FALSE(presented) << "the completion waits for the cross-fade";
    settle();
    EXPECT_EQ(presented, true);
    EXPECT_EQ(root()->launchController(), nullptr);
    EXPECT_EQ(currentScreenKey(), u"welcome"_s);
}
