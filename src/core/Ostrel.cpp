#include <ostrel/Ostrel.h>

#include "core/OSTLogging.h"

namespace ostrel {

void Ostrel::setLoggingLevel(unsigned level)
{
    OSTLogging::setLoggingLevel(level);
}

QString Ostrel::version()
{
    return QStringLiteral(OSTREL_VERSION_STRING);
}

} // namespace ostrel
