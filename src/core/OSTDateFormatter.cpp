#include "core/OSTDateFormatter.h"

using namespace Qt::StringLiterals;

namespace ostrel {

OSTDateFormatter::OSTDateFormatter(const QString &pattern, const QLocale &locale,
                                   Qt::TimeSpec timeSpec)
    : m_pattern(pattern), m_locale(locale), m_timeSpec(timeSpec)
{
}

QString OSTDateFormatter::stringFromDate(const QDateTime &date) const
{
    if (!date.isValid())
        return QString();
    const QDateTime inTimeZone = m_timeSpec == Qt::UTC ? date.toUTC() : date.toLocalTime();
    return m_locale.toString(inTimeZone, m_pattern);
}

QDateTime OSTDateFormatter::dateFromString(const QString &text) const
{
    const QDateTime parsed = m_locale.toDateTime(text, m_pattern);
    if (!parsed.isValid())
        return parsed;
    return QDateTime(parsed.date(), parsed.time(), m_timeSpec);
}

const OSTDateFormatter &ost_mdyDateFormatter()
{
    static const OSTDateFormatter formatter(u"MM/dd/yyyy"_s, QLocale(), Qt::LocalTime);
    return formatter;
}

const OSTDateFormatter &ost_dmyDateFormatter()
{
    static const OSTDateFormatter formatter(u"dd/MM/yyyy"_s, QLocale(), Qt::LocalTime);
    return formatter;
}

const OSTDateFormatter &ost_timestampFormatter()
{
    // Never destroyed: the event queue stamps events until the process ends.
    static const auto *formatter = new OSTDateFormatter(u"yyyy-MM-dd HH:mm:ss.zzz000"_s, QLocale::c(), Qt::UTC);
    return *formatter;
}

} // namespace ostrel
