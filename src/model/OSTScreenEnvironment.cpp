#include "model/OSTScreenEnvironment.h"

#include "core/OSTGuiThreadAnswer.h"
#include "experience/OSTExperienceManager.h"
#include "users/OSTFacebookLoginInfo.h"
#include "users/OSTFacebookManager.h"
#include "users/OSTUserManager.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

// The screen models guard themselves against answers that arrive after they are gone; the
// application only stands for "some object on the GUI thread".
QObject *guiThreadContext()
{
    return QCoreApplication::instance();
}

void logInWithSocialAccount(const QVariantMap &info,
                            const OSTScreenModel::SocialLogInCompletion &completion)
{
    const auto answer = ost_answerOnGuiThreadOnce<bool, const std::optional<QVariantMap> &>(
        guiThreadContext(), u"The social log-in"_s, OSTAnswerDelivery::AtOnce, [completion](bool success, const std::optional<QVariantMap> &userInfo) {
            completion(success && userInfo, userInfo.value_or(QVariantMap()));
        });
    OSTFacebookManager::sharedManager().logInWithInfo(OSTFacebookLoginInfo(info), answer);
}

void authenticateWithHost(const QVariantMap &fields,
                          const OSTScreenModel::AuthenticationCompletion &completion)
{
    const auto answer = ost_answerOnGuiThreadOnce<const OSTValidationResult &, const QString &>(
        guiThreadContext(), u"The experience delegate's authenticateFacebookWithFields"_s, OSTAnswerDelivery::AtOnce,
        [completion](const OSTValidationResult &result, const QString &userID) { completion(result, userID); });
    const auto sent = OSTExperienceManager::sharedManager().sendToDelegate(
        [&](OSTExperienceDelegate &delegate) { delegate.authenticateFacebookWithFields(fields, answer); });
    // A host without its own check accepts the account as it is.
    if (sent == OSTExperienceManager::DelegateAnswer::NotImplemented)
        completion(std::nullopt, QString());
}

void logInUser(const QVariantMap &fields, const QString &userID)
{
    OSTUserManager &users = OSTUserManager::sharedManager();
    users.appendUserProperties(fields, OSTUserManager::Delivery::KeepLocal);
    users.logInUserWithID(userID.isEmpty() ? QVariant() : QVariant(userID));
}

} // namespace

OSTScreenModel::Environment OSTScreenEnvironment::forExperience(QSizeF area)
{
    OSTScreenModel::Environment environment;
    environment.area = area;
    environment.substitution = [](const QString &text) {
        return OSTExperienceManager::sharedManager().replaceDynamicVariables(text);
    };
    environment.openURL = [](const QString &url) { return OSTExperienceManager::openURLWithString(url); };
    environment.socialLogIn = &logInWithSocialAccount;
    environment.authenticate = &authenticateWithHost;
    environment.logInUser = &logInUser;
    return environment;
}

} // namespace ostrel
