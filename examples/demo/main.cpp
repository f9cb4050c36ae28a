// ostrel-demo: a host application that shows the demo experience at start, answers sign-ups and
// log-ins itself and lists the SDK's events as they fire. With --autoplay it walks the install
// flow by itself and checks what the development service received; with --measure it reports
// what the experience costs the host (see scripts/run-demo).
#include "DemoExperienceDelegate.h"
#include "DemoStart.h"
#include "DemoWindow.h"
#include "EventPanel.h"
#include "HostMeasurement.h"
#include "OSTDevelopmentFacebookAdapter.h"
#include "WidgetsAutoplayToolkit.h"

#include <ostrel/Ostrel.h>

#include <QApplication>

using namespace Qt::StringLiterals;
using namespace ostrel;
using namespace ostrel::demo;

namespace {

void placeBeside(QWidget &panel, const QWidget &window)
{
    panel.move(window.frameGeometry().right() + 16, window.y());
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(u"ostrel-demo"_s);

    const std::optional<DemoOptions> options = DemoStart::readOptions();
    if (!options)
        return 2;

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
    if (!options->withoutSDK) {
        OSTExperienceSettings settings = OSTExperienceSettings::settings();
        settings.presentingViewController = &window;
        DemoStart::presentAutomaticExperience(settings, options->autoplay || options->measure
                                                            ? DemoStart::WhenNothingShows::ExitWithFailure
                                                            : DemoStart::WhenNothingShows::KeepRunning);
    }

    std::unique_ptr<AutoplayWalk> walk;
    if (options->autoplay)
        walk = DemoStart::startWalk(*options, std::make_unique<WidgetsAutoplayToolkit>(&window), *delegate);
    return QApplication::exec();
}
