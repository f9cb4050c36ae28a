// A host that uses only the public API and a QCoreApplication (no windows), as a command-line
// tool or a service would. Arguments: the main bundle folder, then "before" to start the SDK
// before the application object exists or "after" to start it once the object exists. Exits 0
// once the launch has finished with success, 1 when it finished without, 2 on bad arguments;
// the test that runs it bounds the wait.

#include <ostrel/Ostrel.h>

#include <QCoreApplication>
#include <QTimer>

#include <cstdio>
#include <cstring>

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
    const bool startFirst = std::strcmp(argv[2], "before") == 0;
    ostrel::Ostrel::setMainBundlePath(QString::fromLocal8Bit(argv[1]));
    ostrel::Ostrel::setLoggingLevel(ostrel::OSTLoggingLevelInfo);
    if (startFirst)
        ostrel::Ostrel::start();
    QCoreApplication application(argc, argv);
    if (!startFirst)
        ostrel::Ostrel::start();
    ostrel::Ostrel::executeAfterLaunch([](bool success) {
        std::printf("launch finished: %s\n", success ? "success" : "failure");
        QTimer::singleShot(0, [success] { QCoreApplication::exit(success ? 0 : 1); });
    });
    return QCoreApplication::exec();
}
