#pragma once

#include <ostrel/OSTFacebookAdapter.h>

#include "users/OSTFacebookLoginInfo.h"

#include <QString>
#include <QUrl>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>

namespace ostrel {

// Log-in with Facebook and the user's Facebook profile, through the adapter a host registers
// (OSTFacebookAdapter::runtimeName in OSTRuntime). Without an adapter, or without the main
// bundle's "FacebookAppID", every operation completes negatively at once and nothing is logged.
// Also opens the app-install link the launch response may carry ("fb_activities_response").
//
// Lives for the whole process; called on the GUI thread, where every completion is delivered
// (at most once each, whatever the adapter does).
class OSTFacebookManager {
public:
    using LoginCompletion = std::function<void(bool success, const std::optional<QVariantMap> &userInfo)>;
    using UserInfoCompletion = std::function<void(const std::optional<QVariantMap> &userInfo)>;
    using PictureCompletion = std::function<void(const std::optional<QString> &url)>;

    static OSTFacebookManager &sharedManager();

    // The main bundle's "FacebookAppID" when it is a string.
    std::optional<QString> facebookAppID() const;
    // An adapter is registered and has a current token.
    bool isLoggedIn() const;

    // Logs in (unless already logged in) and completes with the profile plus "profile_pic".
    void logInWithInfo(const std::optional<OSTFacebookLoginInfo> &info, LoginCompletion completion);
    // The profile with "profile_pic"; nothing when either request fails (the whole profile is
    // dropped when the picture is missing).
    void getUserInfoWithLoginInfo(const OSTFacebookLoginInfo &info, UserInfoCompletion completion);
    void logOut();

    void graphRequestWithPath(const QString &path, const QVariantMap &parameters, const QString &graphVersion,
                              UserInfoCompletion completion);
    void requestUserInfoWithFields(const QString &fields, const QString &graphVersion, UserInfoCompletion completion);
    void requestUserPictureWithGraphVersion(const QString &graphVersion, PictureCompletion completion);

    // Opens "fb_activities_response"'s "applink_url" (with "fb_click_time_utc" when a
    // "click_time" is given), except for a referral launch.
    void processLaunchResponse(const std::optional<QVariantMap> &response);
    // The applink to open for a launch response, if any.
    static std::optional<QUrl> applinkURL(const QVariantMap &response);

private:
    OSTFacebookManager() = default;

    static std::shared_ptr<OSTFacebookAdapter> adapter();
};

} // namespace ostrel
