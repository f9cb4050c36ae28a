#include "users/OSTFacebookManager.h"

#include <ostrel/OSTRuntime.h>

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTGuiThreadAnswer.h"
#include "core/OSTLogging.h"
#include "platform/OSTBundle.h"
#include "platform/OSTURLOpener.h"

#include <type_traits>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

// An adapter's completion as the SDK passes it on: brought to the GUI thread, always on a later
// turn of the event loop, and only the first call counts.
template <typename... Args>
std::function<void(Args...)> deliveredOnceOnMainQueue(std::type_identity_t<std::function<void(Args...)>> completion)
{
    return ost_answerOnGuiThreadOnce<Args...>(nullptr, u"The Facebook adapter"_s, OSTAnswerDelivery::Posted,
                                              std::move(completion));
}

bool isTrue(const QVariant &value)
{
    if (value.typeId() == QMetaType::QString)
        return ost_boolValue(value.toString());
    return ost_isNumber(value) && value.toDouble() != 0.0;
}

} // namespace

OSTFacebookManager &OSTFacebookManager::sharedManager()
{
    static OSTFacebookManager *manager = new OSTFacebookManager();
    return *manager;
}

std::shared_ptr<OSTFacebookAdapter> OSTFacebookManager::adapter()
{
    return OSTRuntime::create<OSTFacebookAdapter>(OSTFacebookAdapter::runtimeName);
}

std::optional<QString> OSTFacebookManager::facebookAppID() const
{
    const QVariant appID = OSTBundle::mainBundle()->objectForInfoDictionaryKey(u"FacebookAppID"_s);
    if (appID.typeId() != QMetaType::QString)
        return std::nullopt;
    return appID.toString();
}

bool OSTFacebookManager::isLoggedIn() const
{
    const std::shared_ptr<OSTFacebookAdapter> facebook = adapter();
    return facebook && facebook->currentAccessToken().has_value();
}

void OSTFacebookManager::logInWithInfo(const std::optional<OSTFacebookLoginInfo> &info, LoginCompletion completion)
{
    const std::shared_ptr<OSTFacebookAdapter> facebook = adapter();
    if (!facebookAppID() || !facebook) {
        completion(false, std::nullopt);
        return;
    }
    const OSTFacebookLoginInfo loginInfo = info.value_or(OSTFacebookLoginInfo::defaultInfo());
    auto completeWithUserInfo = [this, loginInfo, completion] {
        getUserInfoWithLoginInfo(loginInfo, [completion](const std::optional<QVariantMap> &userInfo) {
            completion(userInfo.has_value(), userInfo);
        });
    };
    if (isLoggedIn()) {
        completeWithUserInfo();
        return;
    }
    facebook->logInWithReadPermissions(
        loginInfo.permissions(),
        deliveredOnceOnMainQueue<OSTFacebookAdapter::LoginResult>(
            [completeWithUserInfo, completion](OSTFacebookAdapter::LoginResult result) {
                if (result == OSTFacebookAdapter::LoginResult::Success)
                    completeWithUserInfo();
                else
                    completion(false, std::nullopt);
            }));
}

void OSTFacebookManager::getUserInfoWithLoginInfo(const OSTFacebookLoginInfo &info, UserInfoCompletion completion)
{
    const QString graphVersion = info.graphVersion();
    requestUserInfoWithFields(
        info.graphFields(), graphVersion,
        [this, graphVersion, completion](const std::optional<QVariantMap> &userInfo) {
            if (!userInfo) {
                completion(std::nullopt);
                return;
            }
            requestUserPictureWithGraphVersion(graphVersion, [userInfo, completion](const std::optional<QString> &url) {
                // Without a picture the whole profile is dropped: a flow that shows it expects both.
                if (!url) {
                    completion(std::nullopt);
                    return;
                }
                QVariantMap profile = *userInfo;
                profile.insert(u"profile_pic"_s, *url);
                completion(profile);
            });
        });
}

void OSTFacebookManager::logOut()
{
    if (const std::shared_ptr<OSTFacebookAdapter> facebook = adapter())
        facebook->logOut();
}

void OSTFacebookManager::graphRequestWithPath(const QString &path, const QVariantMap &parameters,
                                              const QString &graphVersion, UserInfoCompletion completion)
{
    const std::shared_ptr<OSTFacebookAdapter> facebook = adapter();
    const auto token = facebook ? facebook->currentAccessToken() : std::nullopt;
    if (!facebookAppID() || !token) {
        completion(std::nullopt);
        return;
    }
    facebook->startGraphRequest({path, parameters, token->tokenString, graphVersion},
                                deliveredOnceOnMainQueue<const std::optional<QVariantMap> &>(std::move(completion)));
}

void OSTFacebookManager::requestUserInfoWithFields(const QString &fields, const QString &graphVersion,
                                                   UserInfoCompletion completion)
{
    graphRequestWithPath(u"me"_s, {{u"fields"_s, fields}}, graphVersion, std::move(completion));
}

void OSTFacebookManager::requestUserPictureWithGraphVersion(const QString &graphVersion, PictureCompletion completion)
{
    const std::shared_ptr<OSTFacebookAdapter> facebook = adapter();
    const auto token = facebook ? facebook->currentAccessToken() : std::nullopt;
    if (!token) {
        completion(std::nullopt);
        return;
    }
    const QVariantMap parameters = {
        {u"fields"_s, u"url"_s}, {u"redirect"_s, u"0"_s}, {u"width"_s, 800},
        {u"height"_s, 800},      {u"type"_s, u"square"_s},
    };
    graphRequestWithPath(u"%1/picture"_s.arg(token->userID), parameters, graphVersion,
                         [completion](const std::optional<QVariantMap> &result) {
                             const QVariantMap data =
                                 result ? ost_dictionaryForKey(*result, u"data"_s).value_or(QVariantMap()) : QVariantMap();
                             completion(ost_stringForKey(data, u"url"_s));
                         });
}

void OSTFacebookManager::processLaunchResponse(const std::optional<QVariantMap> &response)
{
    if (!response)
        return;
    if (const std::optional<QUrl> url = applinkURL(*response))
        OSTURLOpener::openURL(*url);
}

std::optional<QUrl> OSTFacebookManager::applinkURL(const QVariantMap &response)
{
    if (isTrue(response.value(u"referral"_s)))
        return std::nullopt;
    const QVariantMap activities = ost_dictionaryForKey(response, u"fb_activities_response"_s).value_or(QVariantMap());
    const std::optional<QString> applink = ost_stringForKey(activities, u"applink_url"_s);
    if (!applink || applink->isEmpty())
        return std::nullopt;
    QString address = *applink;
    if (const auto clickTime = ost_stringForKey(activities, u"click_time"_s)) {
        address += QUrl(address).hasQuery() ? u'&' : u'?';
        address += u"fb_click_time_utc="_s + *clickTime;
    }
    const QUrl url(address);
    if (!url.isValid()) {
        OSTLogging::logDebug(u"The app link \"%1\" is not a valid address; it is not opened."_s, address);
        return std::nullopt;
    }
    return url;
}

} // namespace ostrel
