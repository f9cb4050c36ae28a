#include "support/OSTTestSupport.h"

#include <ostrel/Ostrel.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>

#include <optional>

#include <gtest/gtest.h>

namespace ostrel::test {

ManualClockScope::ManualClockScope(double now) : m_clock(std::make_shared<OSTManualClock>(now))
{
    OSTClock::setCurrent(m_clock);
}

ManualClockScope::~ManualClockScope()
{
    OSTClock::setCurrent(nullptr);
}

void ManualClockScope::advance(double seconds)
{
    m_clock->advance(seconds);
    QCoreApplication::processEvents();
}

QString writeBundle(const QString &folder, const QVariantMap &info)
{
    writeFile(folder + QStringLiteral("/Info.json"),
              QJsonDocument(QJsonObject::fromVariantMap(info)).toJson());
    return folder;
}

QVariantMap jsonObject(const char *json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray(json), &error);
    // Test data that does not parse is a mistake in the test, also at static-initialisation time.
    if (error.error != QJsonParseError::NoError || !document.isObject())
        qFatal("test JSON is not an object (%s): %s", qPrintable(error.errorString()), json);
    return document.object().toVariantMap();
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << path.toStdString();
    ASSERT_EQ(file.write(bytes), bytes.size());
}

bool waitUntil(const std::function<bool()> &condition, int timeoutMilliseconds)
{
    QDeadlineTimer deadline(timeoutMilliseconds);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(1);
    }
    return true;
}

bool launchAndWait(const OSTLaunchOptions &options)
{
    std::optional<bool> success;
    Ostrel::executeAfterLaunch([&](bool result) { success = result; });
    Ostrel::applicationDidFinishLaunching(options);
    return waitUntil([&] { return success.has_value(); }, 30000) && *success;
}

QString captureStandardError(const std::function<void()> &work)
{
    ::testing::internal::CaptureStderr();
    work();
    return QString::fromStdString(::testing::internal::GetCapturedStderr());
}

} // namespace ostrel::test
