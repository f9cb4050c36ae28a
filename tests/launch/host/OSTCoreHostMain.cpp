// A host that uses only the public API and no widgets, as a command-line tool, a service or a Qt
// Quick application would. Arguments: the main bundle folder, then "before" to start the SDK (and
// ask for attribution) before the application object exists or "after" to start it once the
// object exists, then optionally "present" to make a QGuiApplication and present an experience
// once launched (printing "presented: yes" or "presented: no"), and after it "window" to show a
// bare QWindow (no Qt Quick window) first. Without it, exits 0 once the
// launch has finished with success, 1 when it finished without; 2 on bad arguments. The test that
// runs it bounds the wait.

#include <ostrel/Ostrel.h>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QTimer>
#include <QUrl>
#include <QWindow>

#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>

namespace {

std::unique_ptr<QCoreApplication> makeApplication(bool presents, int &argc, char **argv)
{
    if (presents)
        return std::make_unique<QGuiApplication>(argc, argv);
    return std::make_unique<QCoreApplication>(argc, argv);
}

void presentThenQuit()
{
    ostrel::Ostrel::presentExperienceWithCompletion([](bool presented) {
        std::printf("presented: %s\n", presented ? "yes" : "no");
        std::fflush(stdout);
        QTimer::singleShot(0, [] { QCoreApplication::exit(0); });
    });
}

} // namespace

int main(int argc, char **argv)
{
    const bool presents = argc >= 4 && std::strcmp(argv[3], "present") == 0;
    const bool showsWindow = argc == 5 && std::strcmp(argv[4], "window") == 0;
    if (argc != 3 && !(argc == 4 && presents) && !(presents && showsWindow))
        return 2;
    const bool startFirst = std::strcmp(argv[2], "before") == 0;
    ostrel::Ostrel::setMainBundlePath(QString::fromLocal8Bit(argv[1]));
    ostrel::Ostrel::setLoggingLevel(ostrel::OSTLoggingLevelInfo);
    if (startFirst) {
        ostrel::Ostrel::start();
        // Too early: ignored, and the attribution (with the screen it reads) is not made yet.
        ostrel::Ostrel::continueUserActivity(QUrl(QStringLiteral("https://example.com/early")));
        ostrel::Ostrel::getInstallAttributionWithCompletion([](const std::optional<ostrel::OSTAttribution> &) {
            std::printf("early attribution answered\n");
        });
    }
    const std::unique_ptr<QCoreApplication> application = makeApplication(presents, argc, argv);
    std::optional<QWindow> window; // a QCoreApplication can make none
    if (showsWindow)
        window.emplace().show();
    if (!startFirst)
        ostrel::Ostrel::start();
    ostrel::Ostrel::executeAfterLaunch([presents](bool success) {
        std::printf("launch finished: %s\n", success ? "success" : "failure");
        std::fflush(stdout);
        if (presents)
            presentThenQuit();
        else
            QTimer::singleShot(0, [success] { QCoreApplication::exit(success ? 0 : 1); });
    });
    return QCoreApplication::exec();
}
