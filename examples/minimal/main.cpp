// A host application that starts Ostrel from its bundle (Info.json beside the executable) and
// logs when the SDK's launch has finished.
#include <ostrel/Ostrel.h>

#include <QApplication>
#include <QLabel>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);

    ostrel::Ostrel::setLoggingLevel(ostrel::OSTLoggingLevelInfo);
    ostrel::Ostrel::start();
    ostrel::Ostrel::executeAfterLaunch([](bool success) {
        qInfo("Ostrel launch finished (%s)", success ? "SDK started" : "token refused");
    });

    QLabel window(QStringLiteral("Ostrel %1").arg(ostrel::Ostrel::version()));
    window.resize(320, 120);
    window.show();
    return application.exec();
}
