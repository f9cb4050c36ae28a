#include "core/OSTDateFormatter.h"

#include <gtest/gtest.h>

#include <ctime>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

// Each test runs in its own process, so a test may choose the device's time zone before the
// formatters first read it.
void useDeviceTimeZone(const char *zone)
{
    qputenv("TZ", zone);
    tzset();
}

} // namespace

TEST(DateFormatter, LatinDigitsInAnyDeviceLocaleAndTimestampsInUtc)
{
    QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
    useDeviceTimeZone("America/New_York");
    const OSTDateFormatter &formatter = ost_timestampFormatter();

    const QDateTime utc(QDate(2024, 2, 29), QTime(23, 4, 5, 67), Qt::UTC);
    EXPECT_EQ(formatter.stringFromDate(utc), u"2024-02-29 23:04:05.067000"_s)
        << "Latin digits whatever the device's locale";
    EXPECT_EQ(formatter.stringFromDate(utc.toLocalTime()), u"2024-02-29 23:04:05.067000"_s)
        << "a local time is written in UTC";
    EXPECT_EQ(formatter.stringFromDate(QDateTime()), u""_s);

    const QDateTime read = formatter.dateFromString(u"2024-02-29 23:04:05.067000"_s);
    EXPECT_EQ(read, utc);
    EXPECT_EQ(read.timeSpec(), Qt::UTC);
    EXPECT_FALSE(formatter.dateFromString(u"2024-02-29"_s).isValid());
    EXPECT_FALSE(formatter.dateFromString(u"yesterday"_s).isValid());

    // Screen JSON writes dates with Latin digits; this locale writes others but must still read
    // them, and read back what it writes itself.
    const OSTDateFormatter &mdy = ost_mdyDateFormatter();
    EXPECT_EQ(mdy.dateFromString(u"12/31/1999"_s).date(), QDate(1999, 12, 31));
    const QDateTime date(QDate(2023, 7, 4), QTime(0, 0), Qt::LocalTime);
    EXPECT_EQ(mdy.dateFromString(mdy.stringFromDate(date)), date);
}

TEST(DateFormatter, DayAndMonthFormattersUseTheDeviceTimeZone)
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    useDeviceTimeZone("America/New_York");
    const QDateTime lateEvening(QDate(2024, 3, 1), QTime(2, 0), Qt::UTC); // 21:00 on 29 Feb in New York

    EXPECT_EQ(ost_mdyDateFormatter().stringFromDate(lateEvening), u"02/29/2024"_s);
    EXPECT_EQ(ost_dmyDateFormatter().stringFromDate(lateEvening), u"29/02/2024"_s);

    const QDateTime read = ost_mdyDateFormatter().dateFromString(u"12/31/1999"_s);
    EXPECT_EQ(read, QDateTime(QDate(1999, 12, 31), QTime(0, 0), Qt::LocalTime));
    EXPECT_EQ(read.toUTC(), QDateTime(QDate(1999, 12, 31), QTime(5, 0), Qt::UTC));
    EXPECT_EQ(ost_dmyDateFormatter().dateFromString(u"31/12/1999"_s).date(), QDate(1999, 12, 31));

    EXPECT_FALSE(ost_mdyDateFormatter().dateFromString(u"31/12/1999"_s).isValid()) << "month 31";
    EXPECT_FALSE(ost_mdyDateFormatter().dateFromString(u""_s).isValid());
    EXPECT_FALSE(ost_dmyDateFormatter().dateFromString(u"1999-12-31"_s).isValid());
}
