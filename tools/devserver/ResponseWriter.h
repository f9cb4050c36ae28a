#pragma once

#include "FaultSwitches.h"

#include <QByteArray>

class QHttpServerResponder;

namespace ostrel::devserver {

struct Response {
    int status = 200;
    QByteArray body;
    QByteArray contentType = "application/octet-stream";
};

class ServiceClock;

// Writes answers, honouring a fault's delay and connection mode. A delayed answer waits on the
// service's clock; a client that leaves meanwhile is reported at once and gets nothing.
class ResponseWriter {
public:
    ResponseWriter() = delete;

    static void send(QHttpServerResponder &&responder, const Response &response, const Fault &fault,
                     ServiceClock &clock);

private:
    static void write(QHttpServerResponder &responder, const Response &response, Fault::Connection connection);
    static void writeHalfAndClose(QHttpServerResponder &responder, const Response &response);
};

} // namespace ostrel::devserver
