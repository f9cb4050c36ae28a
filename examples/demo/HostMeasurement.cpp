#include "HostMeasurement.h"

#include <ostrel/Ostrel.h>

#include <QCoreApplication>
#include <QEvent>
#include <QFile>
#include <QRegularExpression>
#include <QTextStream>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace ostrel::demo {

namespace {

// Images decoded, animations over, caches warm: what the host keeps paying while the screen shows.
constexpr int settleMilliseconds = 1500;

void say(const QString &line)
{
    QTextStream(stdout) << "measure: " << line << Qt::endl;
}

std::optional<qint64> kilobytesOf(const QString &smapsRollup, const QString &field)
{
    const QRegularExpression line(u"^%1:\\s+(\\d+) kB$"_s.arg(field), QRegularExpression::MultilineOption);
    const QRegularExpressionMatch match = line.match(smapsRollup);
    if (!match.hasMatch())
        return std::nullopt;
    return match.captured(1).toLongLong();
}

} // namespace

HostMeasurement::HostMeasurement(SDK sdk, QString firstScreenElement, std::chrono::milliseconds timeLimit,
                                 QObject *parent)
    : QObject(parent), m_sdk(sdk), m_firstScreenElement(std::move(firstScreenElement)), m_timeLimit(timeLimit)
{
}

void HostMeasurement::start()
{
    if (m_sdk == SDK::NotStarted) {
        reportMemoryAfterSettling();
        return;
    }
    qApp->installEventFilter(this);
    Ostrel::executeAfterLaunch([this](bool) { m_sinceLaunchFinished.start(); });
    QTimer::singleShot(m_timeLimit, this, [this] {
        if (m_painted)
            return;
        say(u"the first screen was not painted within %1 s"_s.arg(m_timeLimit.count() / 1000.0));
        emit finished(3);
    });
}

bool HostMeasurement::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Paint && watched->objectName() == m_firstScreenElement)
        markFirstScreenPainted();
    return QObject::eventFilter(watched, event);
}

void HostMeasurement::markFirstScreenPainted()
{
    if (m_painted || !m_sinceLaunchFinished.isValid())
        return;
    m_painted = true;
    say(u"launch finished to first screen painted: %1 ms"_s.arg(m_sinceLaunchFinished.nsecsElapsed() / 1e6, 0, 'f', 1));
    qApp->removeEventFilter(this);
    reportMemoryAfterSettling();
}

void HostMeasurement::reportMemoryAfterSettling()
{
    QTimer::singleShot(settleMilliseconds, this, &HostMeasurement::reportMemory);
}

void HostMeasurement::reportMemory()
{
    const std::optional<MemoryUsage> usage = currentMemoryUsage();
    if (!usage) {
        say(u"cannot read /proc/self/smaps_rollup"_s);
        emit finished(1);
        return;
    }
    say(u"memory %1: private dirty %2 kB, resident %3 kB"_s
            .arg(m_sdk == SDK::Started ? u"with the experience shown"_s : u"without the SDK"_s)
            .arg(usage->privateDirtyKilobytes)
            .arg(usage->residentKilobytes));
    emit finished(0);
}

std::optional<HostMeasurement::MemoryUsage> HostMeasurement::currentMemoryUsage()
{
    QFile rollup(u"/proc/self/smaps_rollup"_s);
    if (!rollup.open(QIODevice::ReadOnly))
        return std::nullopt;
    return memoryUsageIn(QString::fromLatin1(rollup.readAll()));
}

std::optional<HostMeasurement::MemoryUsage> HostMeasurement::memoryUsageIn(const QString &smapsRollup)
{
    const std::optional<qint64> privateDirty = kilobytesOf(smapsRollup, u"Private_Dirty"_s);
    const std::optional<qint64> resident = kilobytesOf(smapsRollup, u"Rss"_s);
    if (!privateDirty || !resident)
        return std::nullopt;
    return MemoryUsage{*privateDirty, *resident};
}

} // namespace ostrel::demo
