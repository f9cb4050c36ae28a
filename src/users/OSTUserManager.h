#pragma once

#include <ostrel/OSTUser.h>

#include "events/OSTTrackedItem.h"

#include <QMutex>
#include <QObject>
#include <QVariantMap>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

namespace ostrel {

class OSTFileManager;
class OSTUserDefaultsManager;

// Keeps the one current user of the installation: sign-up, log-in and log-out, the user's
// properties (normalised, appended only when they change, sent to the service's
// "user_properties"), the user part of the launch response ("app_user"), and the stored copy
// under "currentUser", rewritten on every change.
//
// Lives for the whole process on the GUI thread, where every call is made. The exceptions are
// currentUser(), isLoggedIn(), isLoggedInLifetime() and requiresLogin(), which any thread may
// read (the event queue reads the user for its tracking parameters). Answers of the service are
// brought back to the GUI thread before they touch the user.
class OSTUserManager : public QObject {
    Q_OBJECT

public:
    enum class Registration { LogIn, SignUp };
    enum class Delivery { Send, KeepLocal };
    // The properties the service returned, without "ost_name" and "ost_user_id"; empty after a
    // failure.
    using PropertiesCompletion = std::function<void(const QVariantMap &properties)>;

    static OSTUserManager &sharedManager();

    // --- State ----------------------------------------------------------------------------------
    OSTUser currentUser() const;
    bool isLoggedIn() const;
    void setLoggedIn(bool loggedIn);
    // True once any log-in or sign-up happened on this installation; never turns false again.
    bool isLoggedInLifetime() const;
    void setLoggedInLifetime(bool loggedInLifetime);
    // Whether the host's application requires a logged-in user; true until the host says
    // otherwise, for this process only.
    bool requiresLogin() const;
    void setRequiresLogin(bool requiresLogin);

    // --- Sign-up, log-in, log-out ---------------------------------------------------------------
    // An identifier that is not a string becomes "".
    void signUpUser();
    void signUpUserWithID(const QVariant &userID);
    void logInUser();
    void logInUserWithID(const QVariant &userID);
    void logInUserWithID(const QVariant &userID, Registration registration);
    // Replaces the user by an empty one; the lifetime flag stays.
    void logOutUser();

    // --- Properties -----------------------------------------------------------------------------
    // Normalises `properties` and appends the changed entries to the user; with Delivery::Send
    // also sends the user's properties.
    void appendUserProperties(const QVariantMap &properties, Delivery delivery);
    // Sends the user's properties; only with a completion does the service return its own.
    void sendUserPropertiesWithCompletion(PropertiesCompletion completion = {});
    // Dates become the SDK's timestamp text, images are saved as "<key>.png" and become that
    // name; values that cannot be both stored and sent as JSON are left out with a warning.
    QVariantMap normalizedUserProperties(const QVariantMap &properties) const;

    // --- Other changes of the user --------------------------------------------------------------
    // A change of name also sends the properties.
    void setUserName(const std::optional<QString> &name);
    void setLastViewedVariation(const std::optional<QString> &variation);

    // The user part of a launch response ("app_user": "ab_tests", "user_properties").
    void processLaunchResponse(const std::optional<QVariantMap> &response);

    // The screen on display (null when none), whose flow the sign-up and log-in events name.
    // Start-up connects the experience manager's.
    using CurrentScreenSource = std::function<std::shared_ptr<const OSTTrackedItem>()>;
    void connectCurrentScreenSource(CurrentScreenSource source) { m_currentScreen = std::move(source); }

signals:
    // The user's properties changed (a log-out does not count: see didLogOut()).
    void propertiesChanged(const QVariantMap &properties);
    // The user was replaced by an empty one; values derived from the old user are stale.
    void didLogOut();

private:
    OSTUserManager(OSTUserDefaultsManager &defaults, OSTFileManager &files);

    static OSTUser storedUser(const OSTUserDefaultsManager &defaults);
    // The one way the current user changes: reports what changed and saves.
    void changeCurrentUser(const std::function<void(OSTUser &)> &change);
    void reactToChange(const OSTUser &before, const OSTUser &after);
    void saveCurrentUser(const OSTUser &user);
    QVariantMap userPropertiesParameters(bool returnProperties) const;
    QVariant normalizedValue(const QString &key, const QVariant &value) const;

    OSTUserDefaultsManager &m_defaults;
    OSTFileManager &m_files;

    // Guards m_currentUser, which the event queue reads.
    mutable QMutex m_userMutex;
    OSTUser m_currentUser;
    std::atomic<bool> m_requiresLogin = true;
    CurrentScreenSource m_currentScreen;
};

} // namespace ostrel
