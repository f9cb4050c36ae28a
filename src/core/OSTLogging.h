#pragma once

#include <ostrel/OSTLoggingLevel.h>

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <QVariant>

#include <concepts>

namespace ostrel {

// The SDK's levelled console log. Every line goes to standard error as exactly one of
// "Ostrel Error: ", "Ostrel Warning: ", "Ostrel Info: " or "Ostrel Debug: " followed by the
// message. The format uses QString's %1, %2... placeholders; arguments are only converted when
// the level lets the line through. Each log call returns whether it wrote.
//
// Default level: applied once, on first use. Silent (0) in a live build, errors and warnings (2)
// in a development build; see isInLiveEnvironment(). Thread-safe.
class OSTLogging {
public:
    OSTLogging() = delete;

    template <typename... Arguments>
    static bool logError(const QString &format, const Arguments &...arguments)
    {
        return log(OSTLoggingLevelError, format, arguments...);
    }
    template <typename... Arguments>
    static bool logWarning(const QString &format, const Arguments &...arguments)
    {
        return log(OSTLoggingLevelWarning, format, arguments...);
    }
    template <typename... Arguments>
    static bool logInfo(const QString &format, const Arguments &...arguments)
    {
        return log(OSTLoggingLevelInfo, format, arguments...);
    }
    template <typename... Arguments>
    static bool logDebug(const QString &format, const Arguments &...arguments)
    {
        return log(OSTLoggingLevelDebug, format, arguments...);
    }

    // No range check: values above 4 behave as 4, values that are negative as signed numbers
    // behave as 0.
    static void setLoggingLevel(unsigned level);
    static unsigned loggingLevel();

    // A build is live (silent by default) unless it counts as development:
    //  - the main bundle's Info.json has "OstrelDevelopmentBuild" set to true (false forces live);
    //  - without that key, a debug build of the SDK (compiled without NDEBUG) is development.
    static bool isInLiveEnvironment();

    // Text forms of the argument types that log lines carry.
    static QString describe(const QString &value) { return value; }
    static QString describe(const char *value) { return QString::fromUtf8(value); }
    static QString describe(const QByteArray &value) { return QString::fromUtf8(value); }
    static QString describe(const QUrl &value) { return value.toString(); }
    static QString describe(bool value);
    static QString describe(std::integral auto value) { return QString::number(value); }
    static QString describe(std::floating_point auto value) { return QString::number(value); }
    // Maps and lists are written as compact JSON, scalars as their string form.
    static QString describe(const QVariant &value);
    static QString describe(const QVariantMap &value);
    static QString describe(const QVariantList &value);

private:
    template <typename... Arguments>
    static bool log(OSTLoggingLevel level, const QString &format, const Arguments &...arguments)
    {
        if (!isEnabled(level))
            return false;
        if constexpr (sizeof...(Arguments) == 0)
            write(level, format);
        else
            write(level, format.arg(describe(arguments)...));
        return true;
    }

    static bool isEnabled(OSTLoggingLevel level);
    static void write(OSTLoggingLevel level, const QString &message);
};

} // namespace ostrel
