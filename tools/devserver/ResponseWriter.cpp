#include "ResponseWriter.h"

#include "ServiceClock.h"

#include <QHttpServerResponder>
#include <QPointer>
#include <QTcpSocket>
#include <QTextStream>

#include <memory>

namespace ostrel::devserver {

namespace {

QHttpServerResponder::StatusCode statusCode(int status)
{
    return static_cast<QHttpServerResponder::StatusCode>(status);
}

// An answer waiting for its delay; settled once, by the clock or by the client leaving.
struct HeldAnswer {
    QHttpServerResponder responder;
    QPointer<QTcpSocket> client;
    bool settled = false;

    bool settle()
    {
        const bool first = !settled;
        settled = true;
        return first;
    }
};

void reportClientGone()
{
    QTextStream(stderr) << "the client of a delayed answer has gone" << Qt::endl;
}

} // namespace

void ResponseWriter::send(QHttpServerResponder &&responder, const Response &response, const Fault &fault,
                          ServiceClock &clock)
{
    if (fault.delaySeconds <= 0.0) {
        write(responder, response, fault.connection);
        return;
    }
    QTcpSocket *socket = responder.socket();
    auto held = std::make_shared<HeldAnswer>(HeldAnswer{std::move(responder), socket});
    QObject::connect(socket, &QAbstractSocket::disconnected, socket, [held] {
        if (held->settle())
            reportClientGone();
    });
    clock.callAfter(fault.delaySeconds, [held, response, connection = fault.connection] {
        if (!held->settle())
            return;
        if (held->client && held->client->state() == QAbstractSocket::ConnectedState)
            write(held->responder, response, connection);
        else
            reportClientGone();
    });
}

void ResponseWriter::write(QHttpServerResponder &responder, const Response &response, Fault::Connection connection)
{
    switch (connection) {
    case Fault::Connection::Drop:
        responder.socket()->abort();
        return;
    case Fault::Connection::Truncate:
        writeHalfAndClose(responder, response);
        return;
    case Fault::Connection::Normal:
        responder.write(response.body, response.contentType, statusCode(response.status));
        return;
    }
}

void ResponseWriter::writeHalfAndClose(QHttpServerResponder &responder, const Response &response)
{
    responder.writeStatusLine(statusCode(response.status));
    responder.writeHeader("Content-Type", response.contentType);
    responder.writeHeader("Content-Length", QByteArray::number(response.body.size()));
    responder.writeBody(response.body.left(response.body.size() / 2));
    responder.socket()->disconnectFromHost();
}

} // namespace ostrel::devserver
