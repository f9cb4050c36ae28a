#pragma once

// Dates written and read with one fixed pattern, locale and time zone. The SDK shares three of
// them (below), each created once and then only read, so any thread may use them.

#include <QDateTime>
#include <QLocale>
#include <QString>

namespace ostrel {

class OSTDateFormatter {
public:
    // `pattern` uses QLocale's date-time format letters.
    OSTDateFormatter(const QString &pattern, const QLocale &locale, Qt::TimeSpec timeSpec);

    // The date in this formatter's time zone, written with its pattern; "" for an invalid date.
    QString stringFromDate(const QDateTime &date) const;
    // The date the text names in this formatter's time zone; an invalid date when the text does
    // not match the pattern.
    QDateTime dateFromString(const QString &text) const;

    const QString &pattern() const { return m_pattern; }
    const QLocale &locale() const { return m_locale; }
    Qt::TimeSpec timeSpec() const { return m_timeSpec; }

private:
    const QString m_pattern;
    const QLocale m_locale;
    const Qt::TimeSpec m_timeSpec;
};

// "MM/dd/yyyy" in the device's locale and time zone.
const OSTDateFormatter &ost_mdyDateFormatter();
// "dd/MM/yyyy" in the device's locale and time zone.
const OSTDateFormatter &ost_dmyDateFormatter();
// "yyyy-MM-dd HH:mm:ss.SSSSSS" in UTC with the POSIX (C) locale. Times here carry milliseconds,
// so the six fraction digits are the milliseconds followed by "000", and only such texts are read
// back.
const OSTDateFormatter &ost_timestampFormatter();

} // namespace ostrel
