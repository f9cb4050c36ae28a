#include "ResponseWriter.h"

#include <QHttpServerResponder>
#include <QPointer>
#include <QTcpSocket>
#include <QTextStream>
#include <QTimer>

#include <memory>

namespace ostrel::devserver {

namespace {

QHttpServerResponder::StatusCode statusCode(int status)
{
    return static_cast<QHttpServerResponder::StatusCode>(status);
}

} // namespace

void ResponseWriter::send(QHttpServerResponder &&responder, const Response &response, const Fault &fault)
{
    if (fault.delaySeconds <= 0.0) {
        write(responder, response, fault.connection);
        return;
    }
    QTcpSocket *socket = responder.socket();
    auto held = std::make_shared<QHttpServerResponder>(std::move(responder));
    QTimer::singleShot(static_cast<int>(fault.delaySeconds * 1000.0),
                       [held, response, connection = fault.connection, client = QPointer<QTcpSocket>(socket)] {
        if (client && client->state() == QAbstractSocket::ConnectedState)
            write(*held, response, connection);
        else
            QTextStream(stderr) << "the client of a delayed answer has gone" << Qt::endl;
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
