// The country table as pickers show it: its size, its fixed order and the rows kept exactly as
// the service's screens expect them.

#include "input/OSTCountryTable.h"

#include <QSet>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

TEST(CountryTable, HoldsEveryRowInItsFixedOrderWithItsExactCode)
{
    const QStringList &names = OSTCountryTable::sortedCountries();
    const QStringList &codes = OSTCountryTable::sortedCodes();
    ASSERT_EQ(names.size(), 248);
    ASSERT_EQ(codes.size(), 248);
    EXPECT_EQ(OSTCountryTable::rowCount(), 248);
    EXPECT_EQ(QSet<QString>(names.begin(), names.end()).size(), 236) << "countries with several rows repeat";

    struct Row {
        int number; // counted from 1, as a reader counts rows
        QString name;
        QString code;
    };
    const Row sample[] = {
        {1, u"United States"_s, u"+1"_s},
        {7, u"Japan"_s, u"+81"_s},
        {8, u"Abkhazia"_s, u"+7 840"_s},
        {9, u"Abkhazia"_s, u"+7 940"_s},
        {49, u"Canada"_s, u"+1"_s},
        {51, u"Cayman Islands"_s, u"+ 345"_s},
        {61, u"Congo, Dem. Rep. of (Zaire)"_s, u"+243"_s},
        {64, u"Ivory Coast"_s, u"+225"_s},
        {68, u"Cyprus"_s, u"+537"_s},
        {124, u"Kazakhstan"_s, u"+7 7"_s},
        {127, u"North Korea"_s, u"+850"_s},
        {128, u"South Korea"_s, u"+82"_s},
        {154, u"Micronesia"_s, u"+691"_s},
        {155, u"Midway Island"_s, u"+1 808"_s},
        {156, u"Micronesia"_s, u"+691"_s},
        {161, u"Montserrat"_s, u"+1664"_s},
        {209, u"South Georgia and the South Sandwich Islands"_s, u"+500"_s},
        {236, u"United States"_s, u"+1"_s},
        {237, u"Uruguay"_s, u"+598"_s},
        {238, u"U.S. Virgin Islands"_s, u"+1 340"_s},
        {248, u"Zimbabwe"_s, u"+263"_s},
    };
    for (const Row &row : sample) {
        SCOPED_TRACE(row.number);
        EXPECT_EQ(names.at(row.number - 1), row.name);
        EXPECT_EQ(codes.at(row.number - 1), row.code);
    }
    EXPECT_EQ(names.count(u"Dominican Republic"_s), 3);
    EXPECT_EQ(names.count(u"Puerto Rico"_s), 2);

    // Every code is a plus followed by digits and blanks only.
    for (qsizetype row = 0; row < codes.size(); ++row) {
        SCOPED_TRACE(names.at(row).toStdString());
        const QString &code = codes.at(row);
        ASSERT_TRUE(code.startsWith(u'+'));
        EXPECT_TRUE(std::all_of(code.begin() + 1, code.end(), [](QChar c) { return c.isDigit() || c == u' '; }));
    }
}

} // namespace
} // namespace ostrel
