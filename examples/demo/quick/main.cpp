// ostrel-demo-quick: the demo host as a Qt Quick application (a QGuiApplication and a QML window,
// no Qt Widgets): it shows the demo experience at start over its window, answers sign-ups and
// log-ins itself and lists the SDK's events as they fire. With --autoplay it walks the install
// flow by itself and checks what the development service received (see scripts/run-demo --quick).
// It registers no social log-in adapter: the development one draws a Qt Widgets dialog.
#include "DemoExperienceDelegate.h"
#include "DemoStart.h"
#include "EventListModel.h"
#include "QuickAutoplayToolkit.h"
#include "QuickDemoHost.h"

#include <ostrel/Ostrel.h>

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QTextStream>

using namespace Qt::StringLiterals;
using namespace ostrel;
using namespace ostrel::demo;

namespace {

// The offscreen platform has no graphics device for Qt Quick's default renderer.
void useSoftwareRendererOffscreen()
{
    if (QGuiApplication::platformName() == u"offscreen"_s)
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
}

bool refuseMeasurement(const DemoOptions &options)
{
    if (!options.measure && !options.withoutSDK)
        return false;
    QTextStream(stderr) << "ostrel-demo-quick: --measure and --without-sdk are for the Qt Widgets demo, ostrel-demo"
                        << Qt::endl;
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(u"ostrel-demo-quick"_s);

    const std::optional<DemoOptions> options = DemoStart::readOptions();
    if (!options || refuseMeasurement(*options))
        return 2;
    useSoftwareRendererOffscreen();

    QuickDemoHost host;
    EventListModel events;
    auto delegate = std::make_shared<DemoExperienceDelegate>(options->answerDelay);
    QObject::connect(delegate.get(), &DemoExperienceDelegate::received, &host, &QuickDemoHost::showHandOver);
    Ostrel::setExperienceDelegate(delegate);
    Ostrel::start();
    host.refreshUser();

    QQmlApplicationEngine engine;
    engine.setInitialProperties({{u"host"_s, QVariant::fromValue(&host)}, {u"events"_s, QVariant::fromValue(&events)}});
    engine.load(QUrl(u"qrc:/ostrel-demo/DemoHost.qml"_s));
    auto *window = engine.rootObjects().isEmpty() ? nullptr : qobject_cast<QQuickWindow *>(engine.rootObjects().constFirst());
    if (!window) {
        QTextStream(stderr) << "ostrel-demo-quick: the QML window did not load" << Qt::endl;
        return 1;
    }
    host.setWindow(window);
    window->requestActivate();

    OSTExperienceSettings settings = OSTExperienceSettings::settings();
    settings.presentingWindow = window;
    DemoStart::presentAutomaticExperience(settings, options->autoplay ? DemoStart::WhenNothingShows::ExitWithFailure
                                                                      : DemoStart::WhenNothingShows::KeepRunning);

    std::unique_ptr<AutoplayWalk> walk;
    if (options->autoplay)
        walk = DemoStart::startWalk(*options, std::make_unique<QuickAutoplayToolkit>(window), *delegate);
    return QGuiApplication::exec();
}
