#include "support/OSTChildProcess.h"

#include "platform/OSTBundle.h"

#include <QCoreApplication>
#include <QHash>
#include <QProcess>

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

int OSTChildProcess::runSharingData(const QString &name, const QString &bundleFolder)
{
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedChannels);
    child.start(QCoreApplication::applicationFilePath(),
                {argumentFor(name), qEnvironmentVariable("XDG_DATA_HOME"), bundleFolder});
    if (!child.waitForFinished(60000) || child.exitStatus() != QProcess::NormalExit)
        return -1;
    return child.exitCode();
}

void OSTChildProcess::adoptParentData(const QStringList &arguments)
{
    qputenv("XDG_DATA_HOME", arguments.at(arguments.size() - 2).toLocal8Bit());
    OSTBundle::setMainBundlePath(arguments.last());
}

} // namespace ostrel::test
