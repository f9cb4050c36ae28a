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

// Writes answers, honouring a fault's delay and connection mode. A delayed answer is written
// later from the event loop; when the client has gone by then, nothing is written.
class ResponseWriter {
public:
    ResponseWriter() = delete;

    static void send(QHttpServerResponder &&responder, const Response &response, const Fault &fault);

private:
    static void write(QHttpServerResponder &responder, const Response &response, Fault::Connection connection);
    static void writeHalfAndClose(QHttpServerResponder &responder, const Response &response);
};

} // namespace ostrel::devserver
