#include "DemoStart.h"

#include <ostrel/Ostrel.h>

#include <QCoreApplication>
#include <QTextStream>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace ostrel::demo {

std::optional<DemoOptions> DemoStart::readOptions()
{
    QString error;
    std::optional<DemoOptions> options = DemoOptions::parse(QCoreApplication::arguments(), error);
    if (!options) {
        QTextStream(stderr) << error << Qt::endl;
        return std::nullopt;
    }
    if (!options->bundlePath.isEmpty())
        Ostrel::setMainBundlePath(options->bundlePath);
    return options;
}

void DemoStart::presentAutomaticExperience(OSTExperienceSettings settings, WhenNothingShows whenNothingShows)
{
    settings.experienceType = OSTExperienceTypeAutomatic;
    Ostrel::presentExperienceWithSettings(settings, [whenNothingShows](bool presented) {
        if (presented)
            return;
        QTextStream(stderr) << QCoreApplication::applicationName() << ": the SDK has no experience to show now"
                            << Qt::endl;
        // The answer may come before the event loop runs, when exit() alone would do nothing.
        if (whenNothingShows == WhenNothingShows::ExitWithFailure)
            QTimer::singleShot(0, QCoreApplication::instance(), [] { QCoreApplication::exit(1); });
    });
}

std::unique_ptr<AutoplayWalk> DemoStart::startWalk(const DemoOptions &options, std::unique_ptr<AutoplayToolkit> toolkit,
                                                   const DemoExperienceDelegate &delegate)
{
    auto walk = std::make_unique<AutoplayWalk>(
        std::move(toolkit),
        AutoplayWalk::Settings{options.screensFolder, options.serviceOutputPath, options.serviceDatabasePath,
                               options.timeLimit});
    QObject::connect(walk.get(), &AutoplayWalk::finished, QCoreApplication::instance(), &QCoreApplication::exit);
    QObject::connect(&delegate, &DemoExperienceDelegate::received,
                     [](const QString &callback, const QVariantMap &fields, const QString &outcome) {
                         QTextStream(stdout) << "host: " << callback << " (" << QStringList(fields.keys()).join(u", "_s)
                                             << ") -> " << outcome << Qt::endl;
                     });
    walk->start();
    return walk;
}

} // namespace ostrel::demo
