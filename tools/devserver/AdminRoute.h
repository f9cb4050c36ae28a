#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QJsonValue>

namespace ostrel::devserver {

class FaultSwitches;
class ServiceClock;

// The admin routes, for tests and developers. They answer only clients on a loopback address
// (403 for anyone else).
//
// /_admin/faults reads and flips the fault switches while the service runs:
//   GET     the faults in force, as a JSON array
//   POST    one fault object (with "endpoint", default "*") or an array of them
//   DELETE  clears every fault
// /_admin/clock moves a driven clock (--driven-clock), which delayed answers wait on:
//   GET     {"seconds": time moved on so far, "pending": answers still held}
//   POST    {"advance": seconds}: moves it on and sends what has come due; 409 on real time
class AdminRoute {
public:
    enum class Method { Get, Post, Delete };

    struct Answer {
        int status;
        QJsonValue body;
    };

    // `faults` and `clock` must outlive the route.
    AdminRoute(FaultSwitches &faults, ServiceClock &clock);

    // /_admin/faults
    Answer handle(Method method, const QHostAddress &client, const QByteArray &body);
    // /_admin/clock
    Answer handleClock(Method method, const QHostAddress &client, const QByteArray &body);

private:
    Answer setFaults(const QByteArray &body);
    Answer advanceClock(const QByteArray &body);
    QJsonValue clockState() const;

    FaultSwitches &m_faults;
    ServiceClock &m_clock;
};

} // namespace ostrel::devserver
