// A selection group's entry: finding a member by its value, and what hostile values become.

#include "screen/OSTSelectionGroupDescription.h"
#include "support/OSTTestSupport.h"

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

TEST(SelectionGroupDescription, ValuesFindTheirMemberByTypeAndHostileValuesGiveNothing)
{
    const OSTSelectionGroupDescription group(u"g"_s, test::jsonObject(R"({"elements": {"a": "3", "c": 3}, "onClick": "next",
        "minimumSelection": {}, "maximumSelection": 1e300})"));
    EXPECT_EQ(group.memberKeyForValue(3.0), u"c"_s) << "numbers compare as numbers";
    EXPECT_EQ(group.memberKeyForValue(u"3"_s), u"a"_s) << "a string is not the number it spells";
    EXPECT_EQ(group.memberKeyForValue(QVariant()), std::nullopt);
    EXPECT_FALSE(group.action()) << "an action must be an object";
    EXPECT_EQ(group.minimumSelection(), 0);
    EXPECT_EQ(group.maximumSelection(), std::numeric_limits<int>::max());
    EXPECT_TRUE(OSTSelectionGroupDescription(u"l"_s, test::jsonObject(R"({"elements": ["a"]})")).memberKeys().isEmpty());
}
