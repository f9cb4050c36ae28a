#include <ostrel/Ostrel.h>

#include "core/OSTLogging.h"
#include "events/OSTEventManager.h"
#include "experience/OSTExperienceManager.h"
#include "launch/OSTServiceManager.h"
#include "launch/OSTStartup.h"
#include "platform/OSTApplication.h"
#include "platform/OSTBundle.h"
#include "users/OSTAttributionManager.h"
#include "users/OSTUserManager.h"

namespace ostrel {

namespace {

// The managers exist once the application object does, whose names place the stores the
// managers read (the stored user among them, carried over from an older version where needed);
// a call before then is ignored rather than reading the wrong stores.
bool managersReady(const char *call)
{
    if (OSTStartup::prepareProcess())
        return true;
    OSTLogging::logWarning(QStringLiteral("Ostrel::%1 was called before the application object exists; it is ignored."),
                           QString::fromLatin1(call));
    return false;
}

} // namespace

const double OstrelVersionNumber = 1.0;
const unsigned char OstrelVersionString[] = "@(#)PROGRAM:Ostrel  PROJECT:Ostrel-1\n";

void Ostrel::setMainBundlePath(const QString &path)
{
    OSTBundle::setMainBundlePath(path);
}

void Ostrel::start()
{
    startWithToken(QString());
}

void Ostrel::startWithToken(const QString &token)
{
    OSTStartup::prepareProcess();
    OSTServiceManager::sharedManager().startWithToken(token);
}

void Ostrel::setLifecycleSource(OSTLifecycleSource source)
{
    OSTApplication::setLifecycleSource(source);
}

void Ostrel::applicationDidFinishLaunching(const OSTLaunchOptions &options)
{
    OSTApplication::sharedApplication().finishLaunching(OSTApplication::launchOptionsUserInfo(options));
}

void Ostrel::applicationDidChangeState(OSTApplicationState state)
{
    OSTApplication::sharedApplication().moveTo(state);
}

void Ostrel::applicationWillTerminate()
{
    OSTApplication::sharedApplication().terminate();
}

void Ostrel::executeAfterLaunch(std::function<void(bool success)> block)
{
    OSTServiceManager::sharedManager().executeAfterLaunch(std::move(block));
}

void Ostrel::trackEventWithName(const QString &name, const QVariantMap &parameters)
{
    if (managersReady("trackEventWithName"))
        OSTEventManager::sharedManager().sendEventWithName(name, parameters);
}

void Ostrel::setEventsEnabled(bool enabled)
{
    if (managersReady("setEventsEnabled"))
        OSTEventManager::sharedManager().setEventsEnabled(enabled);
}

bool Ostrel::eventsEnabled()
{
    return managersReady("eventsEnabled") && OSTEventManager::sharedManager().eventsEnabled();
}

void Ostrel::flushEvents()
{
    if (managersReady("flushEvents"))
        OSTEventManager::sharedManager().flush(OSTEventManager::FlushKind::Immediate);
}

void Ostrel::setExperienceDelegate(const std::shared_ptr<OSTExperienceDelegate> &delegate)
{
    OSTExperienceManager::sharedManager().setExperienceDelegate(delegate);
}

void Ostrel::presentExperience()
{
    OSTExperienceManager::sharedManager().presentExperienceWithSettings(std::nullopt, nullptr);
}

void Ostrel::presentExperienceWithSettings(const OSTExperienceSettings &settings)
{
    OSTExperienceManager::sharedManager().presentExperienceWithSettings(settings, nullptr);
}

void Ostrel::presentExperienceWithCompletion(std::function<void(bool presented)> completion)
{
    OSTExperienceManager::sharedManager().presentExperienceWithSettings(std::nullopt, std::move(completion));
}

void Ostrel::presentExperienceWithSettings(const OSTExperienceSettings &settings,
                                           std::function<void(bool presented)> completion)
{
    OSTExperienceManager::sharedManager().presentExperienceWithSettings(settings, std::move(completion));
}

bool Ostrel::isPresentingExperience()
{
    return OSTExperienceManager::sharedManager().isPresentingExperience();
}

void Ostrel::dismissExperience()
{
    OSTExperienceManager::sharedManager().dismissExperienceWithCompletion(nullptr);
}

void Ostrel::dismissExperienceWithCompletion(std::function<void(bool dismissed)> completion)
{
    OSTExperienceManager::sharedManager().dismissExperienceWithCompletion(std::move(completion));
}

void Ostrel::loadExperienceWithCompletion(std::function<void(QWidget *experience)> completion)
{
    loadExperienceType(OSTExperienceTypeAutomatic, std::move(completion));
}

void Ostrel::loadExperienceType(int type, std::function<void(QWidget *experience)> completion)
{
    OSTExperienceManager::sharedManager().loadExperienceType(type, std::move(completion));
}

bool Ostrel::continueUserActivity(const QUrl &webpageURL, const QString &activityType)
{
    return managersReady("continueUserActivity")
        && OSTAttributionManager::sharedManager().continueUserActivity(activityType, webpageURL);
}

namespace {

// An ignored early call still answers, so that a host waiting for the answer is not left waiting.
template <typename Answer>
void answerNothing(const std::function<void(const std::optional<Answer> &)> &completion)
{
    if (completion)
        completion(std::nullopt);
}

} // namespace

void Ostrel::getLinkForTargeting(const QString &targeting, const std::optional<QVariantMap> &parameters,
                                 std::function<void(const std::optional<QString> &link)> completion)
{
    if (managersReady("getLinkForTargeting"))
        OSTAttributionManager::sharedManager().getLinkForTargeting(targeting, parameters, std::move(completion));
    else
        answerNothing(completion);
}

void Ostrel::getInstallAttributionWithCompletion(
    std::function<void(const std::optional<OSTAttribution> &attribution)> completion)
{
    if (managersReady("getInstallAttributionWithCompletion"))
        OSTAttributionManager::sharedManager().getInstallAttributionWithCompletion(std::move(completion));
    else
        answerNothing(completion);
}

void Ostrel::getLatestAttributionWithCompletion(
    std::function<void(const std::optional<OSTAttribution> &attribution)> completion)
{
    if (managersReady("getLatestAttributionWithCompletion"))
        OSTAttributionManager::sharedManager().getLatestAttributionWithCompletion(std::move(completion));
    else
        answerNothing(completion);
}

bool Ostrel::shouldUseIDFA()
{
    return managersReady("shouldUseIDFA") && OSTAttributionManager::sharedManager().shouldUseIDFA();
}

void Ostrel::setShouldUseIDFA(bool shouldUseIDFA)
{
    if (managersReady("setShouldUseIDFA"))
        OSTAttributionManager::sharedManager().setShouldUseIDFA(shouldUseIDFA);
}

void Ostrel::setRequiresLogin(bool requiresLogin)
{
    if (managersReady("setRequiresLogin"))
        OSTUserManager::sharedManager().setRequiresLogin(requiresLogin);
}

OSTUser Ostrel::currentUser()
{
    return managersReady("currentUser") ? OSTUserManager::sharedManager().currentUser() : OSTUser();
}

void Ostrel::signUpUser()
{
    if (managersReady("signUpUser"))
        OSTUserManager::sharedManager().signUpUser();
}

void Ostrel::signUpUserWithID(const QString &userID)
{
    if (managersReady("signUpUserWithID"))
        OSTUserManager::sharedManager().signUpUserWithID(userID);
}

void Ostrel::logInUser()
{
    if (managersReady("logInUser"))
        OSTUserManager::sharedManager().logInUser();
}

void Ostrel::logInUserWithID(const QString &userID)
{
    if (managersReady("logInUserWithID"))
        OSTUserManager::sharedManager().logInUserWithID(userID);
}

void Ostrel::logOutUser()
{
    if (managersReady("logOutUser"))
        OSTUserManager::sharedManager().logOutUser();
}

void Ostrel::appendUserProperties(const QVariantMap &properties)
{
    if (managersReady("appendUserProperties"))
        OSTUserManager::sharedManager().appendUserProperties(properties, OSTUserManager::Delivery::Send);
}

void Ostrel::setLoggingLevel(unsigned level)
{
    OSTLogging::setLoggingLevel(level);
}

QString Ostrel::version()
{
    return OSTServiceManager::version();
}

} // namespace ostrel
