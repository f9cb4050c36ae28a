#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QJsonValue>

namespace ostrel::devserver {

class FaultSwitches;

// /_admin/faults: reads and flips the fault switches while the service runs. Answers only
// clients on a loopback address (403 for anyone else).
//   GET     the faults in force, as a JSON array
//   POST    one fault object (with "endpoint", default "*") or an array of them
//   DELETE  clears every fault
class AdminRoute {
public:
    enum class Method { Get, Post, Delete };

    struct Answer {
        int status;
        QJsonValue body;
    };

    // `faults` must outlive the route.
    explicit AdminRoute(FaultSwitches &faults);

    Answer handle(Method method, const QHostAddress &client, const QByteArray &body);

private:
    Answer setFaults(const QByteArray &body);

    FaultSwitches &m_faults;
};

} // namespace ostrel::devserver
