#include <ostrel/Ostrel.h>

#include "core/OSTLogging.h"
#include "core/OSTServiceManager.h"
#include "platform/OSTBundle.h"

#include <mutex>

using namespace Qt::StringLiterals;

namespace ostrel {

const double OstrelVersionNumber = 1.0;
const unsigned char OstrelVersionString[] = "@(#)PROGRAM:Ostrel  PROJECT:Ostrel-1\n";

namespace {

// Work that runs once per process before the first token is taken, where a framework would do
// it when loaded.
void prepareProcessOnce()
{
    static std::once_flag once;
    std::call_once(once, [] {
        if (const QString problem = OSTBundle::mainBundle()->infoDictionaryError(); !problem.isEmpty())
            OSTLogging::logError(u"The main bundle's Info.json could not be read: %1"_s, problem);
    });
}

} // namespace

void Ostrel::start()
{
    startWithToken(QString());
}

void Ostrel::startWithToken(const QString &token)
{
    prepareProcessOnce();
    OSTServiceManager::sharedManager().startWithToken(token);
}

void Ostrel::executeAfterLaunch(std::function<void(bool success)> block)
{
    OSTServiceManager::sharedManager().executeAfterLaunch(std::move(block));
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
