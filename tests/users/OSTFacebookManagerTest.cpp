// Social log-in through a host adapter: a scripted adapter stands in for a social SDK, including
// one that misbehaves; the launch parameter and the app link go through the real launch.

#include <ostrel/OSTFacebookAdapter.h>
#include <ostrel/OSTRuntime.h>
#include <ostrel/Ostrel.h>

#include "launch/OSTServiceManager.h"
#include "platform/OSTApplication.h"
#include "platform/OSTBundle.h"
#include "platform/OSTMainQueue.h"
#include "platform/OSTURLOpener.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTTestSupport.h"
#include "users/OSTFacebookManager.h"
#include "users/OSTUserManager.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

// How the scripted adapter answers.
enum class Answering { Later, Twice, FromAnotherThread, Never };

class ScriptedAdapter : public OSTFacebookAdapter {
public:
    std::optional<AccessToken> currentAccessToken() const override { return token; }

    void logInWithReadPermissions(const QStringList &permissions, LoginCompletion completion) override
    {
        requestedPermissions = permissions;
        if (loginResult == LoginResult::Success)
            token = AccessToken{u"42"_s, u"token-42"_s};
        answer([completion, result = loginResult] { completion(result); });
    }

    void logOut() override
    {
        ++logOutCount;
        token.reset();
    }

    void startGraphRequest(const GraphRequest &request, GraphCompletion completion) override
    {
        graphRequests.push_back(request);
        const std::optional<QVariantMap> result = graphAnswers.contains(request.path)
            ? std::optional<QVariantMap>(graphAnswers.value(request.path).toMap())
            : std::nullopt;
        answer([completion, result] { completion(result); });
    }

    Answering answering = Answering::Later;
    LoginResult loginResult = LoginResult::Success;
    std::optional<AccessToken> token;
    QVariantMap graphAnswers;
    QStringList requestedPermissions;
    std::vector<GraphRequest> graphRequests;
    int logOutCount = 0;

private:
    void answer(const std::function<void()> &call)
    {
        switch (answering) {
        case Answering::Later:
            OSTMainQueue::async(call);
            break;
        case Answering::Twice:
            call();
            call();
            break;
        case Answering::FromAnotherThread:
            std::thread(call).detach();
            break;
        case Answering::Never:
            break;
        }
    }
};

// Each call of a login completion, with the thread it ran on.
struct LoginCalls {
    struct Call { bool success; std::optional<QVariantMap> userInfo; bool onGUIThread; };
    std::vector<Call> calls;
    OSTFacebookManager::LoginCompletion completion()
    {
        return [this](bool success, const std::optional<QVariantMap> &userInfo) {
            calls.push_back({success, userInfo, QThread::currentThread() == QCoreApplication::instance()->thread()});
        };
    }
};

class FacebookLogin : public ::testing::Test {
protected:
    void SetUp() override
    {
        test::writeBundle(bundle.path(), {{u"FacebookAppID"_s, u"1234"_s}});
        OSTBundle::setMainBundlePath(bundle.path());
        adapter->graphAnswers = test::jsonObject(R"({"me": {"name": "Ada", "email": "ada@example.com"},
                                                     "42/picture": {"data": {"url": "https://pictures.example/42"}}})");
    }
    void TearDown() override { OSTRuntime::unregister(OSTFacebookAdapter::runtimeName); }

    void registerAdapter() { OSTRuntime::registerInstance<OSTFacebookAdapter>(OSTFacebookAdapter::runtimeName, adapter); }

    // Runs whatever answers are already posted to the GUI thread.
    static void settle() { QCoreApplication::processEvents(); }

    static OSTFacebookManager &facebook() { return OSTFacebookManager::sharedManager(); }

    QTemporaryDir bundle;
    std::shared_ptr<ScriptedAdapter> adapter = std::make_shared<ScriptedAdapter>();
    LoginCalls login;
};

} // namespace

TEST_F(FacebookLogin, WithoutAnAdapterOrAnAppIDEveryOperationFailsAtOnce)
{
    facebook().logInWithInfo(std::nullopt, login.completion());
    ASSERT_EQ(login.calls.size(), 1u) << "no adapter: completes before returning";
    EXPECT_FALSE(login.calls[0].success);
    EXPECT_FALSE(facebook().isLoggedIn());
    std::optional<std::optional<QString>> picture;
    facebook().requestUserPictureWithGraphVersion(u"v2.5"_s, [&](const std::optional<QString> &url) { picture = url; });
    ASSERT_TRUE(picture.has_value());
    EXPECT_FALSE(picture->has_value());

    registerAdapter();
    test::writeBundle(bundle.path(), {});
    OSTBundle::setMainBundlePath(bundle.path());
    facebook().logInWithInfo(std::nullopt, login.completion());
    ASSERT_EQ(login.calls.size(), 2u) << "no \"FacebookAppID\": completes before returning";
    EXPECT_FALSE(login.calls[1].success);
    EXPECT_TRUE(adapter->requestedPermissions.isEmpty()) << "the adapter was never asked";
}

TEST_F(FacebookLogin, ALogInDeliversTheProfileWithItsPicture)
{
    registerAdapter();
    facebook().logInWithInfo(std::nullopt, login.completion());
    ASSERT_TRUE(test::waitUntil([&] { return !login.calls.empty(); }));
    ASSERT_EQ(login.calls.size(), 1u);
    EXPECT_TRUE(login.calls[0].success);
    EXPECT_EQ(login.calls[0].userInfo, (QVariantMap{{u"name"_s, u"Ada"_s},
                                                    {u"email"_s, u"ada@example.com"_s},
                                                    {u"profile_pic"_s, u"https://pictures.example/42"_s}}));
    EXPECT_EQ(adapter->requestedPermissions, (QStringList{u"public_profile"_s, u"email"_s}));

    ASSERT_EQ(adapter->graphRequests.size(), 2u);
    const OSTFacebookAdapter::GraphRequest &profile = adapter->graphRequests[0];
    EXPECT_EQ(profile.path, u"me"_s);
    EXPECT_EQ(profile.graphVersion, u"v2.5"_s);
    EXPECT_EQ(profile.tokenString, u"token-42"_s);
    EXPECT_TRUE(profile.parameters.value(u"fields"_s).toString().startsWith(u"about,age_range,"_s));
    const QVariantMap pictureParameters = adapter->graphRequests[1].parameters;
    EXPECT_EQ(pictureParameters.value(u"redirect"_s), u"0"_s);
    EXPECT_EQ(pictureParameters.value(u"width"_s), 800);
    EXPECT_EQ(pictureParameters.value(u"type"_s), u"square"_s);

    // Already logged in: the profile is fetched again without a second log-in, with the flow's
    // own fields and version.
    adapter->requestedPermissions.clear();
    const OSTFacebookLoginInfo info(QVariantMap{{u"graphFields"_s, QVariantList{u"name"_s, 3, u"email"_s}},
                                                {u"graphVersion"_s, u"v9.0"_s}, {u"permissions"_s, u"email"_s}});
    EXPECT_EQ(info.permissions(), (QStringList{u"public_profile"_s, u"email"_s})) << "not an array: the default";
    facebook().logInWithInfo(info, login.completion());
    ASSERT_TRUE(test::waitUntil([&] { return login.calls.size() == 2; }));
    EXPECT_TRUE(login.calls[1].success);
    EXPECT_TRUE(adapter->requestedPermissions.isEmpty());
    EXPECT_EQ(adapter->graphRequests[2].parameters.value(u"fields"_s), u"name,email"_s);
    EXPECT_EQ(adapter->graphRequests[2].graphVersion, u"v9.0"_s);
}

TEST_F(FacebookLogin, ACancelledLogInOrAMissingPictureEndsWithoutAProfile)
{
    registerAdapter();
    adapter->loginResult = OSTFacebookAdapter::LoginResult::Cancelled;
    facebook().logInWithInfo(std::nullopt, login.completion());
    ASSERT_TRUE(test::waitUntil([&] { return login.calls.size() == 1; }));
    EXPECT_FALSE(login.calls[0].success);
    EXPECT_TRUE(adapter->graphRequests.empty());

    adapter->loginResult = OSTFacebookAdapter::LoginResult::Success;
    adapter->graphAnswers.remove(u"42/picture"_s);
    facebook().logInWithInfo(std::nullopt, login.completion());
    ASSERT_TRUE(test::waitUntil([&] { return login.calls.size() == 2; }));
    EXPECT_FALSE(login.calls[1].success);
    EXPECT_FALSE(login.calls[1].userInfo.has_value()) << "the profile is dropped with the picture";
}

TEST_F(FacebookLogin, AMisbehavingAdapterIsAnsweredOnceOnTheGUIThread)
{
    registerAdapter();
    for (const Answering answering : {Answering::Twice, Answering::FromAnotherThread}) {
        adapter->answering = answering;
        adapter->token.reset();
        const size_t before = login.calls.size();
        facebook().logInWithInfo(std::nullopt, login.completion());
        ASSERT_TRUE(test::waitUntil([&] { return login.calls.size() > before; }));
        settle();
        ASSERT_EQ(login.calls.size(), before + 1) << "answered once";
        EXPECT_TRUE(login.calls.back().success);
        EXPECT_TRUE(login.calls.back().onGUIThread);
    }

    adapter->answering = Answering::Never;
    adapter->token.reset();
    const size_t before = login.calls.size();
    facebook().logInWithInfo(std::nullopt, login.completion());
    settle();
    EXPECT_EQ(login.calls.size(), before) << "returns at once and waits for nothing";
}

TEST_F(FacebookLogin, LoggingTheUserOutLogsOutOfTheSocialAccount)
{
    registerAdapter();
    OSTUserManager::sharedManager().logOutUser();
    EXPECT_EQ(adapter->logOutCount, 0) << "nobody was logged in";
    adapter->token = OSTFacebookAdapter::AccessToken{u"42"_s, u"token-42"_s};
    OSTUserManager::sharedManager().logOutUser();
    EXPECT_EQ(adapter->logOutCount, 1);
    EXPECT_FALSE(facebook().isLoggedIn());
}

TEST_F(FacebookLogin, TheAppLinkOpensWithTheClickTimeUnlessTheLaunchWasAReferral)
{
    std::vector<QUrl> opened;
    OSTURLOpener::setHandler([&](const QUrl &url) {
        opened.push_back(url);
        return true;
    });
    const auto activities = [](const QVariant &applink, const QVariant &clickTime) {
        QVariantMap response{{u"applink_url"_s, applink}};
        if (clickTime.isValid())
            response.insert(u"click_time"_s, clickTime);
        return response;
    };
    const struct {
        QVariantMap response;
        std::optional<QString> expected;
    } cases[] = {
        {{{u"fb_activities_response"_s, activities(u"app://open"_s, u"1700000000"_s)}},
         u"app://open?fb_click_time_utc=1700000000"_s},
        {{{u"fb_activities_response"_s, activities(u"https://a.example/p?x=1"_s, u"17"_s)}},
         u"https://a.example/p?x=1&fb_click_time_utc=17"_s},
        {{{u"fb_activities_response"_s, activities(u"app://open"_s, 17)}}, u"app://open"_s},
        {{{u"referral"_s, true}, {u"fb_activities_response"_s, activities(u"app://open"_s, {})}}, std::nullopt},
        {{{u"referral"_s, u"yes"_s}, {u"fb_activities_response"_s, activities(u"app://open"_s, {})}}, std::nullopt},
        {{{u"referral"_s, false}, {u"fb_activities_response"_s, activities(u"app://open"_s, {})}}, u"app://open"_s},
        {{{u"fb_activities_response"_s, activities(5, u"17"_s)}}, std::nullopt},
        {{{u"fb_activities_response"_s, u"app://open"_s}}, std::nullopt},
    };
    for (const auto &testCase : cases) {
        opened.clear();
        facebook().processLaunchResponse(testCase.response);
        if (testCase.expected) {
            ASSERT_EQ(opened.size(), 1u) << testCase.expected->toStdString();
            EXPECT_EQ(opened.front().toString(), *testCase.expected);
        } else {
            EXPECT_TRUE(opened.empty()) << opened.front().toString().toStdString();
        }
    }
    OSTURLOpener::setHandler({});
}

TEST_F(FacebookLogin, TheLaunchNamesTheAppIDOnlyWhenTheBundleHasOne)
{
    test::OSTDevServerProcess server;
    ASSERT_TRUE(server.start());
    server.installMainBundle(bundle.path(), {{u"OstrelToken"_s, u"test-token"_s}});
    OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Host);
    Ostrel::start();
    OSTApplication::sharedApplication().finishLaunching();
    ASSERT_TRUE(test::waitUntil([&] { return server.recordedRequests(u"launch_v3"_s).size() == 1; }));
    EXPECT_FALSE(server.recordedRequests(u"launch_v3"_s).last().parameters.contains(u"fb_app_id"_s));

    server.installMainBundle(bundle.path(), {{u"OstrelToken"_s, u"test-token"_s}, {u"FacebookAppID"_s, u"1234"_s}});
    OSTServiceManager::sharedManager().launchWithType(u"launch"_s, OSTServiceManager::Delivery::FirstSend);
    ASSERT_TRUE(test::waitUntil([&] { return server.recordedRequests(u"launch_v3"_s).size() == 2; }));
    EXPECT_EQ(server.recordedRequests(u"launch_v3"_s).last().parameters.value(u"fb_app_id"_s), u"1234"_s);
}
