#include <ostrel/Ostrel.h>

#include "core/OSTLogging.h"
#include "events/OSTEventManager.h"
#include "launch/OSTServiceManager.h"
#include "launch/OSTStartup.h"
#include "platform/OSTApplication.h"
#include "platform/OSTBundle.h"
#include "users/OSTUserManager.h"

namespace ostrel {

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
    OSTStartup::prepareProcess();
    OSTEventManager::sharedManager().sendEventWithName(name, parameters);
}

void Ostrel::setEventsEnabled(bool enabled)
{
    OSTEventManager::sharedManager().setEventsEnabled(enabled);
}

bool Ostrel::eventsEnabled()
{
    return OSTEventManager::sharedManager().eventsEnabled();
}

void Ostrel::flushEvents()
{
    OSTEventManager::sharedManager().flush(OSTEventManager::FlushKind::Immediate);
}

namespace {

// The user calls start the SDK's managers first, so that the user they meet is the stored one,
// carried over from an older version where needed.
OSTUserManager &userManager()
{
    OSTStartup::prepareProcess();
    return OSTUserManager::sharedManager();
}

} // namespace

void Ostrel::setRequiresLogin(bool requiresLogin)
{
    userManager().setRequiresLogin(requiresLogin);
}

OSTUser Ostrel::currentUser()
{
    return userManager().currentUser();
}

void Ostrel::signUpUser()
{
    userManager().signUpUser();
}

void Ostrel::signUpUserWithID(const QString &userID)
{
    userManager().signUpUserWithID(userID);
}

void Ostrel::logInUser()
{
    userManager().logInUser();
}

void Ostrel::logInUserWithID(const QString &userID)
{
    userManager().logInUserWithID(userID);
}

void Ostrel::logOutUser()
{
    userManager().logOutUser();
}

void Ostrel::appendUserProperties(const QVariantMap &properties)
{
    userManager().appendUserProperties(properties, OSTUserManager::Delivery::Send);
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
