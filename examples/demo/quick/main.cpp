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

// The window the QML file makes, with its required properties; null (after a message) when it fails.
QQuickWindow *loadWindow(QQmlApplicationEngine &engine, const QString &file, const QVariantMap &properties)
{
    engine.setInitialProperties(properties);
    const qsizetype loaded = engine.rootObjects().size();
    engine.load(QUrl(u"qrc:/ostrel-demo/"_s + file));
    const QList<QObject *> roots = engine.rootObjects();
    auto *window = roots.size() > loaded ? qobject_cast<QQuickWindow *>(roots.constLast()) : nullptr;
    if (!window)
        QTextStream(stderr) << "ostrel-demo-quick: " << file << " made no window" << Qt::endl;
    return window;
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
    QQuickWindow *eventWindow = loadWindow(engine, u"EventList.qml"_s, {{u"events"_s, QVariant::fromValue(&events)}});
    QQuickWindow *window = loadWindow(engine, u"DemoHost.qml"_s, {{u"host"_s, QVariant::fromValue(&host)}});
    if (!eventWindow || !window)
        return 1;
    eventWindow->setPosition(window->frameGeometry().topRight() + QPoint(16, 0));
    host.setWindow(window);
    // Whichever window the platform activated last, key presses must reach the host's.
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
