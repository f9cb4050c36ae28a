// The country table as pickers show it: its size, its repeated countries and codes that are all
// a plus and digits. The rows the service's screens rely on are checked through the picker.

#include "model/OSTCountryTable.h"

#include <QSet>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

TEST(CountryTable, HoldsEveryRowWithACodeOfAPlusAndDigits)
{
    const QStringList &names = OSTCountryTable::sortedCountries();
    const QStringList &codes = OSTCountryTable::sortedCodes();
    ASSERT_EQ(names.size(), 248);
    ASSERT_EQ(codes.size(), 248);
    EXPECT_EQ(OSTCountryTable::rowCount(), 248);
    EXPECT_EQ(QSet<QString>(names.begin(), names.end()).size(), 236) << "countries with several rows repeat";

    for (qsizetype row = 0; row < codes.size(); ++row) {
        SCOPED_TRACE(names.at(row).toStdString());
        const QString &code = codes.at(row);
        ASSERT_TRUE(code.startsWith(u'+'));
        EXPECT_TRUE(std::all_of(code.begin() + 1, code.end(), [](QChar c) { return c.isDigit() || c == u' '; }));
    }
}

} // namespace
} // namespace ostrel
