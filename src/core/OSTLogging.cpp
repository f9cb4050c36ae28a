#include "core/OSTLogging.h"

#include "platform/OSTBundle.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <atomic>
#include <cstdio>
#include <mutex>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

// A plain process-wide level: a racing change may let one line through or hold one back.
std::atomic<unsigned> currentLevel{OSTLoggingLevelNone};
std::once_flag defaultLevelOnce;
std::mutex writeMutex;

void applyDefaultLevelOnce()
{
    std::call_once(defaultLevelOnce, [] {
        currentLevel.store(OSTLogging::isInLiveEnvironment() ? OSTLoggingLevelNone
                                                             : OSTLoggingLevelWarning,
                           std::memory_order_relaxed);
    });
}

const char *prefixFor(OSTLoggingLevel level)
{
    switch (level) {
    case OSTLoggingLevelError:
        return "Ostrel Error: ";
    case OSTLoggingLevelWarning:
        return "Ostrel Warning: ";
    case OSTLoggingLevelInfo:
        return "Ostrel Info: ";
    case OSTLoggingLevelDebug:
    case OSTLoggingLevelNone:
        break;
    }
    return "Ostrel Debug: ";
}

} // namespace

void OSTLogging::setLoggingLevel(unsigned level)
{
    applyDefaultLevelOnce();
    currentLevel.store(level, std::memory_order_relaxed);
}

unsigned OSTLogging::loggingLevel()
{
    applyDefaultLevelOnce();
    return currentLevel.load(std::memory_order_relaxed);
}

bool OSTLogging::isInLiveEnvironment()
{
    const QVariant flag =
        OSTBundle::mainBundle()->objectForInfoDictionaryKey(u"OstrelDevelopmentBuild"_s);
    if (flag.typeId() == QMetaType::Bool)
        return !flag.toBool();
#ifdef NDEBUG
    return true;
#else
    return false;
#endif
}

bool OSTLogging::isEnabled(OSTLoggingLevel level)
{
    // Compared as a signed number, so a "negative" level silences everything.
    return static_cast<int>(loggingLevel()) >= static_cast<int>(level);
}

void OSTLogging::write(OSTLoggingLevel level, const QString &message)
{
    const QByteArray line = QByteArray(prefixFor(level)) + message.toUtf8() + '\n';
    std::lock_guard lock(writeMutex);
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stderr);
    std::fflush(stderr);
}

QString OSTLogging::describe(bool value)
{
    return value ? u"YES"_s : u"NO"_s;
}

QString OSTLogging::describe(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QVariantMap:
        return describe(value.toMap());
    case QMetaType::QVariantList:
        return describe(value.toList());
    case QMetaType::Bool:
        return describe(value.toBool());
    default:
        return value.isValid() ? value.toString() : u"(null)"_s;
    }
}

QString OSTLogging::describe(const QVariantMap &value)
{
    return QString::fromUtf8(
        QJsonDocument(QJsonObject::fromVariantMap(value)).toJson(QJsonDocument::Compact));
}

QString OSTLogging::describe(const QVariantList &value)
{
    return QString::fromUtf8(
        QJsonDocument(QJsonArray::fromVariantList(value)).toJson(QJsonDocument::Compact));
}

} // namespace ostrel
