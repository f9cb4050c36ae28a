#pragma once

#include "FaultSwitches.h"
#include "ServiceClock.h"

#include <QHostAddress>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>
#include <utility>

namespace ostrel::devserver {

// The command line of ostrel-devserver.
struct DevServerOptions {
    QHostAddress address = QHostAddress(QHostAddress::LocalHost);
    // 0 picks a free port.
    quint16 port = 8733;
    QString dataPath = QStringLiteral("ostrel-devserver.sqlite");
    QString experienceFolder;
    QString configurationPath;
    QString linkBase;
    bool tls = false;
    QList<std::pair<QString, Fault>> faults;
    // What delayed answers wait on: real time, or a clock that only /_admin/clock moves.
    ServiceClock::Kind clock = ServiceClock::Kind::Real;

    // The key and certificate files kept next to the database.
    QString keyPath() const { return dataPath + QStringLiteral(".key.pem"); }
    QString certificatePath() const { return dataPath + QStringLiteral(".cert.pem"); }

    // Nothing, with `error` set (the usage text when help was asked for), when the arguments
    // are wrong.
    static std::optional<DevServerOptions> parse(const QStringList &arguments, QString &error);
};

} // namespace ostrel::devserver
