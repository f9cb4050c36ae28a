#include "RequestRecorder.h"

#include "ServiceDatabase.h"

#include <QDateTime>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace ostrel::devserver {

RequestRecorder::RequestRecorder(ServiceDatabase &database) : m_database(database) {}

void RequestRecorder::record(const QString &endpoint, const QJsonObject &parameters)
{
    const double now = static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000.0;
    m_database.execute(u"INSERT INTO requests (endpoint, received_at, parameters) VALUES (?, ?, ?)"_s,
                       {endpoint, now, QString::fromUtf8(QJsonDocument(parameters).toJson(QJsonDocument::Compact))});
}

} // namespace ostrel::devserver
