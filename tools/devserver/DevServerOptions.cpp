#include "DevServerOptions.h"

#include <QCommandLineParser>

using namespace Qt::StringLiterals;

namespace ostrel::devserver {

std::optional<DevServerOptions> DevServerOptions::parse(const QStringList &arguments, QString &error)
{
    DevServerOptions options;
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Development service for the Ostrel SDK."_s);
    const QCommandLineOption help({u"h"_s, u"help"_s}, u"Shows this help."_s);
    const QCommandLineOption port(u"port"_s, u"Port to listen on; 0 picks a free one (default 8733)."_s, u"N"_s);
    const QCommandLineOption listen(u"listen"_s, u"Address to listen on (default 127.0.0.1)."_s, u"ADDRESS"_s);
    const QCommandLineOption data(u"data"_s, u"SQLite database (default ostrel-devserver.sqlite); the key and "
                                             "certificate are kept next to it."_s, u"FILE"_s);
    const QCommandLineOption experience(u"experience"_s, u"Folder with experience.json, config.json and images/."_s,
                                        u"DIR"_s);
    const QCommandLineOption configuration(u"config"_s, u"Launch response keys (default DIR/config.json)."_s,
                                           u"FILE"_s);
    const QCommandLineOption linkBase(u"link-base"_s, u"Base URL of tracking links (default <service URL>/l)."_s,
                                      u"URL"_s);
    const QCommandLineOption tls(u"tls"_s, u"Serves https with the service certificate."_s);
    const QCommandLineOption fault(u"fault"_s, u"A fault, e.g. launch_v3:status=500 or *:delay=2 (repeatable)."_s,
                                   u"FAULT"_s);
    const QCommandLineOption drivenClock(u"driven-clock"_s, u"Delays wait on a clock that only POST /_admin/clock "
                                                            "moves, not on real time (for tests)."_s);
    parser.addOptions({help, port, listen, data, experience, configuration, linkBase, tls, fault, drivenClock});

    if (!parser.parse(arguments)) {
        error = parser.errorText();
        return std::nullopt;
    }
    if (parser.isSet(help) || !parser.positionalArguments().isEmpty()) {
        error = parser.helpText();
        return std::nullopt;
    }
    if (parser.isSet(port)) {
        bool valid = false;
        const uint number = parser.value(port).toUInt(&valid);
        if (!valid || number > 65535) {
            error = u"--port takes a number from 0 to 65535"_s;
            return std::nullopt;
        }
        options.port = static_cast<quint16>(number);
    }
    if (parser.isSet(listen) && !options.address.setAddress(parser.value(listen))) {
        error = u"--listen takes an IP address"_s;
        return std::nullopt;
    }
    if (parser.isSet(data))
        options.dataPath = parser.value(data);
    options.experienceFolder = parser.value(experience);
    options.configurationPath = parser.value(configuration);
    options.linkBase = parser.value(linkBase);
    options.tls = parser.isSet(tls);
    options.clock = parser.isSet(drivenClock) ? ServiceClock::Kind::Driven : ServiceClock::Kind::Real;
    for (const QString &text : parser.values(fault)) {
        const auto parsed = Fault::fromCommandLine(text, error);
        if (!parsed)
            return std::nullopt;
        options.faults.append(*parsed);
    }
    return options;
}

} // namespace ostrel::devserver
