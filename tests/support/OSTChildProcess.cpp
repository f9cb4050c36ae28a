#include "support/OSTChildProcess.h"

#include <QHash>

namespace ostrel::test {

namespace {

const QString prefix = QStringLiteral("--ostrel-child=");

QHash<QString, OSTChildProcess::Mode> &modes()
{
    static QHash<QString, OSTChildProcess::Mode> registry;
    return registry;
}

} // namespace

bool OSTChildProcess::registerMode(const QString &name, Mode mode)
{
    modes().insert(name, std::move(mode));
    return true;
}

bool OSTChildProcess::runIfRequested(const QStringList &arguments, int &exitCode)
{
    for (const QString &argument : arguments) {
        if (!argument.startsWith(prefix))
            continue;
        const auto mode = modes().constFind(argument.mid(prefix.size()));
        exitCode = mode == modes().constEnd() ? 3 : (*mode)(arguments);
        return true;
    }
    return false;
}

QString OSTChildProcess::argumentFor(const QString &name)
{
    return prefix + name;
}

} // namespace ostrel::test
