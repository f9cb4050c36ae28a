#pragma once

#include <QJsonObject>
#include <QString>

namespace ostrel::devserver {

class ServiceDatabase;

// Keeps every decrypted request (endpoint, time received in seconds since 1970, parameters as
// compact JSON) in the table "requests", so tests and developers can see what the SDK sent.
class RequestRecorder {
public:
    // `database` must outlive the recorder.
    explicit RequestRecorder(ServiceDatabase &database);

    void record(const QString &endpoint, const QJsonObject &parameters);

private:
    ServiceDatabase &m_database;
};

} // namespace ostrel::devserver
