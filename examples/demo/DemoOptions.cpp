#include "DemoOptions.h"

#include <QCommandLineParser>

using namespace Qt::StringLiterals;

namespace ostrel::demo {

namespace {

std::optional<std::chrono::milliseconds> positiveMilliseconds(const QString &text, double unitMilliseconds)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok || value <= 0)
        return std::nullopt;
    return std::chrono::milliseconds(static_cast<qint64>(value * unitMilliseconds));
}

} // namespace

std::optional<DemoOptions> DemoOptions::parse(const QStringList &arguments, QString &error)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(u"A host application that shows Ostrel's experiences."_s);
    const QCommandLineOption bundle(u"bundle"_s, u"The folder holding Info.json."_s, u"folder"_s);
    const QCommandLineOption autoplay(u"autoplay"_s, u"Walk the install flow by itself and check the events."_s);
    const QCommandLineOption measure(u"measure"_s, u"Print the time to the first screen and the memory, then quit."_s);
    const QCommandLineOption withoutSDK(u"without-sdk"_s, u"Do not start the SDK (the baseline of --measure)."_s);
    const QCommandLineOption screens(u"screens"_s, u"Where the walk saves a picture of each screen."_s, u"folder"_s);
    const QCommandLineOption serviceOutput(u"service-output"_s, u"The development service's output (for the PIN)."_s,
                                           u"file"_s);
    const QCommandLineOption serviceDatabase(u"service-database"_s, u"The development service's database."_s,
                                             u"file"_s);
    const QCommandLineOption timeLimit(u"time-limit"_s, u"Seconds the walk or the measurement may take (default 45)."_s, u"seconds"_s,
                                       u"45"_s);
    const QCommandLineOption answerDelay(u"answer-delay"_s, u"Milliseconds the host takes to answer (default 300)."_s,
                                         u"milliseconds"_s, u"300"_s);
    parser.addOptions({bundle, autoplay, measure, withoutSDK, screens, serviceOutput, serviceDatabase, timeLimit, answerDelay});
    parser.addHelpOption();
    if (!parser.parse(arguments)) {
        error = parser.errorText() + u"\n\n"_s + parser.helpText();
        return std::nullopt;
    }

    DemoOptions options;
    options.bundlePath = parser.value(bundle);
    options.autoplay = parser.isSet(autoplay);
    options.measure = parser.isSet(measure);
    options.withoutSDK = parser.isSet(withoutSDK);
    options.screensFolder = parser.value(screens);
    options.serviceOutputPath = parser.value(serviceOutput);
    options.serviceDatabasePath = parser.value(serviceDatabase);
    const auto limit = positiveMilliseconds(parser.value(timeLimit), 1000.0);
    const auto delay = positiveMilliseconds(parser.value(answerDelay), 1.0);
    if (!limit || !delay) {
        error = u"--time-limit and --answer-delay take positive numbers\n\n"_s + parser.helpText();
        return std::nullopt;
    }
    options.timeLimit = *limit;
    options.answerDelay = *delay;
    if (options.autoplay && (options.measure || options.withoutSDK)) {
        error = u"--autoplay walks the experience; it cannot be combined with --measure or --without-sdk\n\n"_s
                + parser.helpText();
        return std::nullopt;
    }
    if (options.autoplay
        && (options.screensFolder.isEmpty() || options.serviceOutputPath.isEmpty() || options.serviceDatabasePath.isEmpty())) {
        error = u"--autoplay needs --screens, --service-output and --service-database\n\n"_s + parser.helpText();
        return std::nullopt;
    }
    return options;
}

} // namespace ostrel::demo
