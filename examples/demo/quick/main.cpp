// ostrel-demo-quick: the demo host as a Qt Quick application (a QGuiApplication and a QML window,
// no Qt Widgets): it shows the demo experience at start over its window, answers sign-ups and
// log-ins itself and lists the SDK's events as they fire. With --autoplay it walks the install
// flow by itself and checks what the development service received; with --measure it reports what the
// experience costs the host (see scripts/run-demo --quick).
// It registers no social log-in adapter: the development one draws a Qt Widgets dialog.
#include "DemoExperienceDelegate.h"
#include "DemoStart.h"
#include "HostMeasurement.h"
#include "EventListModel.h"
#include "QuickAutoplayToolkit.h"
#include "QuickDemoHost.h"

#include <ostrel/Ostrel.h>

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickItem>
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

// Qt Quick items get no paint events: the first frame swapped while the first screen's element is
// in the window's scene is the first screen painted.
void markPaintsOf(QQuickWindow &window, HostMeasurement &measurement, const QString &firstScreenElement)
{
    QObject::connect(&window, &QQuickWindow::frameSwapped, &measurement, [&window, &measurement, firstScreenElement] {
        if (window.contentItem()->findChild<QQuickItem *>(firstScreenElement))
            measurement.markFirstScreenPainted();
    });
}

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(u"ostrel-demo-quick"_s);

    const std::optional<DemoOptions> options = DemoStart::readOptions();
    if (!options)
        return 2;
    useSoftwareRendererOffscreen();

    QuickDemoHost host;
    EventListModel events;
    auto delegate = std::make_shared<DemoExperienceDelegate>(options->answerDelay);
    QObject::connect(delegate.get(), &DemoExperienceDelegate::received, &host, &QuickDemoHost::showHandOver);
    const QString firstScreenElement = u"welcomeTitle"_s;
    std::unique_ptr<HostMeasurement> measurement;
    if (options->measure) {
        measurement = std::make_unique<HostMeasurement>(
            options->withoutSDK ? HostMeasurement::SDK::NotStarted : HostMeasurement::SDK::Started, firstScreenElement,
            options->timeLimit);
        QObject::connect(measurement.get(), &HostMeasurement::finished, &application, &QCoreApplication::exit);
        measurement->start();
    }
    if (!options->withoutSDK) {
        Ostrel::setExperienceDelegate(delegate);
        Ostrel::start();
        host.refreshUser();
    }

    QQmlApplicationEngine engine;
    // The walk runs where nobody watches: its host has one window, as a Qt Quick device has.
    QQuickWindow *eventWindow = options->autoplay
        ? nullptr
        : loadWindow(engine, u"EventList.qml"_s, {{u"events"_s, QVariant::fromValue(&events)}});
    QQuickWindow *window = loadWindow(engine, u"DemoHost.qml"_s, {{u"host"_s, QVariant::fromValue(&host)}});
    if ((!eventWindow && !options->autoplay) || !window)
        return 1;
    if (eventWindow)
        eventWindow->setPosition(window->frameGeometry().topRight() + QPoint(16, 0));
    host.setWindow(window);
    // Whichever window the platform activated last, key presses must reach the host's.
    window->requestActivate();
    if (options->withoutSDK)
        return QGuiApplication::exec();
    if (measurement)
        markPaintsOf(*window, *measurement, firstScreenElement);

    OSTExperienceSettings settings = OSTExperienceSettings::settings();
    settings.presentingWindow = window;
    DemoStart::presentAutomaticExperience(settings, options->autoplay || options->measure
                                                        ? DemoStart::WhenNothingShows::ExitWithFailure
                                                        : DemoStart::WhenNothingShows::KeepRunning);

    std::unique_ptr<AutoplayWalk> walk;
    if (options->autoplay)
        walk = DemoStart::startWalk(*options, std::make_unique<QuickAutoplayToolkit>(window), *delegate);
    return QGuiApplication::exec();
}
