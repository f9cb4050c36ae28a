// ostrel-devserver: the SDK's service on this machine. Prints "certificate: <base64>",
// "port: <n>", "url: <service URL>" and "ready" on standard output, one line each, flushed.

#include "DevServer.h"
#include "DevServerOptions.h"

#include <QCoreApplication>
#include <QTextStream>

using namespace Qt::StringLiterals;
using namespace ostrel::devserver;

namespace {

void printLine(const QString &line)
{
    QTextStream(stdout) << line << Qt::endl;
}

int fail(const QString &message)
{
    QTextStream(stderr) << "ostrel-devserver: " << message << Qt::endl;
    return 1;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(u"ostrel-devserver"_s);

    QString error;
    const std::optional<DevServerOptions> options = DevServerOptions::parse(QCoreApplication::arguments(), error);
    if (!options)
        return fail(error);
    const std::unique_ptr<DevServer> server = DevServer::create(*options, printLine, error);
    if (!server)
        return fail(error);
    const quint16 port = server->listen(error);
    if (port == 0)
        return fail(error);

    printLine(u"certificate: "_s + server->identity().certificateBase64());
    printLine(u"port: "_s + QString::number(port));
    printLine(u"url: "_s + server->serviceURL().toString());
    printLine(u"ready"_s);
    return QCoreApplication::exec();
}
