// ostrel-demo: a host application that shows the demo experience at start, answers sign-ups and
// log-ins itself and lists the SDK's events as they fire. With --autoplay it walks the install
// flow by itself and checks what the development service received; with --measure it reports
// what the experience costs the host (see scripts/run-demo).
#include "AutoplayWalk.h"
#include "DemoExperienceDelegate.h"
#include "DemoOptions.h"
#include "DemoWindow.h"
#include "EventPanel.h"
#include "HostMeasurement.h"
#include "OSTDevelopmentFacebookAdapter.h"

#include <ostrel/Ostrel.h>

#include <QApplication>
#include <QTextStream>

using namespace Qt::StringLiterals;
using namespace ostrel;
using namespace ostrel::demo;

namespace {

void placeBeside(QWidget &panel, const QWidget &window)
{
    panel.move(window.frameGeometry().right() + 16, window.y());
}

void presentAtStart(DemoWindow &window, bool exitWhenNothingShows)
{
    OSTExperienceSettings settings = OSTExperienceSettings::settings();
    settings.presentingViewController = &window;
    Ostrel::presentExperienceWithSettings(settings, [exitWhenNothingShows](bool presented) {
        if (presented)
            return;
        QTextStream(stderr) << "ostrel-demo: the SDK has no experience to show now" << Qt::endl;
        if (exitWhenNothingShows)
            QCoreApplication::exit(1);
    });
}

void printHandOvers(const DemoExperienceDelegate &delegate)
{
    QObject::connect(&delegate, &DemoExperienceDelegate::received,
                     [](const QString &callback, const QVariantMap &fields, const QString &outcome) {
                         QTextStream(stdout) << "host: " << callback << " (" << QStringList(fields.keys()).join(u", "_s)
                                             << ") -> " << outcome << Qt::endl;
                     });
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(u"ostrel-demo"_s);

    QString error;
    const std::optional<DemoOptions> options = DemoOptions::parse(QApplication::arguments(), error);
    if (!options) {
        QTextStream(stderr) << error << Qt::endl;
        return 2;
    }
    if (!options->bundlePath.isEmpty())
        Ostrel::setMainBundlePath(options->bundlePath);

    DemoWindow window;
    EventPanel eventPanel;
    auto delegate = std::make_shared<DemoExperienceDelegate>(options->answerDelay);
    QObject::connect(delegate.get(), &DemoExperienceDelegate::received, &window, &DemoWindow::showHandOver);
    auto facebook = std::make_shared<OSTDevelopmentFacebookAdapter>(&window);

    std::unique_ptr<HostMeasurement> measurement;
    if (options->measure) {
        measurement = std::make_unique<HostMeasurement>(
            options->withoutSDK ? HostMeasurement::SDK::NotStarted : HostMeasurement::SDK::Started, u"welcomeTitle"_s,
            options->timeLimit);
        QObject::connect(measurement.get(), &HostMeasurement::finished, &application, &QCoreApplication::exit);
        measurement->start();
    }
    if (!options->withoutSDK) {
        Ostrel::setExperienceDelegate(delegate);
        OSTDevelopmentFacebookAdapter::registerWithRuntime(facebook);
        Ostrel::start();
        window.refreshUser();
    }

    window.show();
    placeBeside(eventPanel, window);
    eventPanel.show();
    window.raise();
    window.activateWindow();
    if (!options->withoutSDK)
        presentAtStart(window, options->autoplay || options->measure);

    std::unique_ptr<AutoplayWalk> walk;
    if (options->autoplay) {
        walk = std::make_unique<AutoplayWalk>(&window, AutoplayWalk::Settings{options->screensFolder,
                                                                              options->serviceOutputPath,
                                                                              options->serviceDatabasePath,
                                                                              options->timeLimit});
        QObject::connect(walk.get(), &AutoplayWalk::finished, &application, &QCoreApplication::exit);
        printHandOvers(*delegate);
        walk->start();
    }
    return QApplication::exec();
}
