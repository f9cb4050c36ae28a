#include "support/OSTDevServerProcess.h"

#include "platform/OSTBundle.h"
#include "support/OSTTestSupport.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace ostrel::test {

namespace {

constexpr int startMilliseconds = 30000;
constexpr int answerMilliseconds = 15000;

QString devServerPath()
{
#ifdef OSTREL_DEVSERVER_PATH
    return QStringLiteral(OSTREL_DEVSERVER_PATH);
#else
    return {};
#endif
}

QByteArray jsonText(const QVariant &value)
{
    return QJsonDocument::fromVariant(value).toJson(QJsonDocument::Compact);
}

QVariant jsonValue(const QVariant &text)
{
    return QJsonDocument::fromJson(text.toString().toUtf8()).toVariant();
}

QString valueOfLine(const QString &output, const QString &key)
{
    for (const QString &line : output.split(u'\n')) {
        if (line.startsWith(key + u": "_s))
            return line.mid(key.size() + 2).trimmed();
    }
    return {};
}

} // namespace

OSTDevServerProcess::OSTDevServerProcess()
{
    QDir(m_folder.path()).mkpath(u"experience/images"_s);
}

OSTDevServerProcess::~OSTDevServerProcess()
{
    stop();
}

bool OSTDevServerProcess::isAvailable()
{
    return !devServerPath().isEmpty() && QFile::exists(devServerPath());
}

bool OSTDevServerProcess::start(const Options &options)
{
    stop();
    // Delayed answers wait for advanceClock(), so no test races a timer.
    QStringList arguments{u"--port"_s, u"0"_s, u"--data"_s, databasePath(), u"--experience"_s, experienceFolder(),
                          u"--driven-clock"_s};
    for (const QString &fault : options.faults)
        arguments << u"--fault"_s << fault;
    if (options.tls)
        arguments << u"--tls"_s;
    arguments << options.extraArguments;

    m_output.clear();
    m_error.clear();
    m_process = std::make_unique<QProcess>();
    m_process->start(devServerPath(), arguments);
    if (!m_process->waitForStarted(startMilliseconds) || !waitUntilReady()) {
        readOutput();
        qWarning("ostrel-devserver did not start: %s", qPrintable(m_error));
        stop();
        return false;
    }
    m_port = static_cast<quint16>(valueOfLine(m_output, u"port"_s).toUInt());
    m_certificate = valueOfLine(m_output, u"certificate"_s);
    m_serviceURL = QUrl(valueOfLine(m_output, u"url"_s));
    return m_port != 0 && !m_certificate.isEmpty();
}

bool OSTDevServerProcess::waitUntilReady()
{
    QDeadlineTimer deadline(startMilliseconds);
    while (!deadline.hasExpired()) {
        readOutput();
        if (m_output.contains(u"\nready\n"_s) || m_output.startsWith(u"ready\n"_s))
            return true;
        if (m_process->state() == QProcess::NotRunning)
            return false;
        m_process->waitForReadyRead(100);
    }
    return false;
}

void OSTDevServerProcess::stop()
{
    if (!m_process)
        return;
    readOutput();
    m_process->kill();
    m_process->waitForFinished(startMilliseconds);
    m_process.reset();
}

bool OSTDevServerProcess::isRunning() const
{
    return m_process && m_process->state() == QProcess::Running;
}

QString OSTDevServerProcess::experienceFolder() const
{
    return m_folder.filePath(u"experience"_s);
}

QString OSTDevServerProcess::databasePath() const
{
    return m_folder.filePath(u"service.sqlite"_s);
}

QString OSTDevServerProcess::standardOutput()
{
    readOutput();
    return m_output;
}

QString OSTDevServerProcess::standardError()
{
    readOutput();
    return m_error;
}

void OSTDevServerProcess::readOutput()
{
    if (!m_process)
        return;
    m_output += QString::fromUtf8(m_process->readAllStandardOutput());
    m_error += QString::fromUtf8(m_process->readAllStandardError());
}

QString OSTDevServerProcess::installMainBundle(const QString &folder, const QVariantMap &extraInfo) const
{
    QVariantMap info = extraInfo;
    info.insert(u"OstrelServiceURL"_s, m_serviceURL.toString());
    info.insert(u"OstrelServiceCertificate"_s, m_certificate);
    writeBundle(folder, info);
    OSTBundle::setMainBundlePath(folder);
    return folder;
}

void OSTDevServerProcess::writeExperience(const QVariantMap &experience) const
{
    writeFile(QDir(experienceFolder()).filePath(u"experience.json"_s), jsonText(experience));
}

void OSTDevServerProcess::writeLaunchConfiguration(const QVariantMap &configuration) const
{
    writeFile(QDir(experienceFolder()).filePath(u"config.json"_s), jsonText(configuration));
}

void OSTDevServerProcess::writeImage(const QString &name, const QByteArray &bytes) const
{
    writeFile(QDir(experienceFolder()).filePath(u"images/"_s + name), bytes);
}

QList<OSTRecordedRequest> OSTDevServerProcess::recordedRequests(const QString &endpoint) const
{
    const QList<QVariantList> rows = endpoint.isEmpty()
        ? query(u"SELECT endpoint, received_at, parameters FROM requests ORDER BY id"_s)
        : query(u"SELECT endpoint, received_at, parameters FROM requests WHERE endpoint = ? ORDER BY id"_s, {endpoint});
    QList<OSTRecordedRequest> requests;
    for (const QVariantList &row : rows)
        requests.append({row.value(0).toString(), row.value(1).toDouble(), jsonValue(row.value(2)).toMap()});
    return requests;
}

QList<QVariantMap> OSTDevServerProcess::storedEvents() const
{
    QList<QVariantMap> events;
    for (const QVariantList &row : query(u"SELECT parameters FROM events ORDER BY id"_s))
        events.append(jsonValue(row.value(0)).toMap());
    return events;
}

int OSTDevServerProcess::storedEventCount() const
{
    const QList<QVariantList> rows = query(u"SELECT COUNT(*) FROM events"_s);
    return rows.isEmpty() ? 0 : rows.first().value(0).toInt();
}

std::optional<QString> OSTDevServerProcess::verificationPin(const QString &phoneNumber) const
{
    const QList<QVariantList> rows =
        query(u"SELECT pin FROM verification_pins WHERE phone_number = ? ORDER BY id DESC LIMIT 1"_s, {phoneNumber});
    if (rows.isEmpty())
        return std::nullopt;
    return rows.first().value(0).toString();
}

QVariantMap OSTDevServerProcess::storedUserProperties(const QString &userKey) const
{
    const QList<QVariantList> rows = query(u"SELECT properties FROM user_properties WHERE user_key = ?"_s, {userKey});
    return rows.isEmpty() ? QVariantMap() : jsonValue(rows.first().value(0)).toMap();
}

bool OSTDevServerProcess::setFault(const QVariantMap &fault)
{
    return send("POST", u"/_admin/faults"_s, jsonText(fault)).status == 200;
}

bool OSTDevServerProcess::clearFaults()
{
    return send("DELETE", u"/_admin/faults"_s).status == 200;
}

bool OSTDevServerProcess::advanceClock(double seconds)
{
    return send("POST", u"/_admin/clock"_s, jsonText(QVariantMap{{u"advance"_s, seconds}})).status == 200;
}

QVariantList OSTDevServerProcess::faults()
{
    return QJsonDocument::fromJson(send("GET", u"/_admin/faults"_s).body).toVariant().toList();
}

OSTHTTPAnswer OSTDevServerProcess::send(const QByteArray &method, const QString &path, const QByteArray &body)
{
    QNetworkAccessManager manager;
    QNetworkRequest request(m_serviceURL.resolved(QUrl(path)));
    request.setHeader(QNetworkRequest::ContentTypeHeader, QByteArrayLiteral("application/json"));
    if (m_serviceURL.scheme() == u"https"_s) {
        QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
        configuration.addCaCertificates(
            QSslCertificate::fromData(QByteArray::fromBase64(m_certificate.toLatin1()), QSsl::Der));
        request.setSslConfiguration(configuration);
    }
    QNetworkReply *reply = manager.sendCustomRequest(request, method, body);
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(answerMilliseconds, &loop, &QEventLoop::quit);
    loop.exec();
    OSTHTTPAnswer answer;
    if (reply->isFinished()) {
        answer.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        answer.body = reply->readAll();
    }
    reply->abort();
    reply->deleteLater();
    return answer;
}

QList<QVariantList> OSTDevServerProcess::query(const QString &sql, const QVariantList &bindings) const
{
    QList<QVariantList> rows;
    sqlite3 *database = nullptr;
    if (sqlite3_open_v2(databasePath().toUtf8().constData(), &database, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) {
        sqlite3_close(database);
        return rows;
    }
    sqlite3_busy_timeout(database, answerMilliseconds);
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(database, sql.toUtf8().constData(), -1, &statement, nullptr) == SQLITE_OK) {
        for (int index = 0; index < bindings.size(); ++index) {
            const QByteArray text = bindings.at(index).toString().toUtf8();
            sqlite3_bind_text(statement, index + 1, text.constData(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
        }
        while (sqlite3_step(statement) == SQLITE_ROW) {
            QVariantList row;
            for (int column = 0; column < sqlite3_column_count(statement); ++column) {
                if (sqlite3_column_type(statement, column) == SQLITE_FLOAT)
                    row.append(sqlite3_column_double(statement, column));
                else
                    row.append(QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, column))));
            }
            rows.append(row);
        }
    }
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return rows;
}

} // namespace ostrel::test
