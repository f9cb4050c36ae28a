// A selection group's entry read once: finding a member by its value, and what hostile values
// become.

#include "experience/OSTAction.h"
#include "screen/OSTSelectionGroupDescription.h"
#include "support/OSTTestSupport.h"

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

TEST(SelectionGroupDescription, ValuesFindTheirMemberAndTheListedKeysIncludeTheSkippedOnes)
{
    const OSTSelectionGroupDescription group(u"colours"_s, test::jsonObject(R"({
        "elements": {"a": "A", "c": 3, "d": {"id": 4}, "e": [], "f": null}, "onClick": {"func": "next"}})"));
    EXPECT_EQ(group.memberKeys(), (QStringList{u"a"_s, u"c"_s, u"d"_s}));
    EXPECT_EQ(group.listedKeys(), (QStringList{u"a"_s, u"c"_s, u"d"_s, u"e"_s, u"f"_s}))
        << "a listed button is no input of its own, whatever its value";
    ASSERT_TRUE(group.action());
    EXPECT_EQ(group.action()->name(), u"next"_s);

    EXPECT_EQ(group.memberKeyForValue(3.0), u"c"_s) << "numbers compare as numbers";
    EXPECT_EQ(group.memberKeyForValue(u"A"_s), u"a"_s);
    EXPECT_EQ(group.memberKeyForValue(u"3"_s), std::nullopt) << "a string is not the number it spells";
    EXPECT_EQ(group.memberKeyForValue(QVariantMap{{u"id"_s, 4}}), u"d"_s);
    EXPECT_EQ(group.memberKeyForValue(QVariant()), std::nullopt);
}

TEST(SelectionGroupDescription, WrongTypesGiveNoMembersBoundsOrAction)
{
    const OSTSelectionGroupDescription broken(u"broken"_s, test::jsonObject(R"({"elements": ["a"],
        "maximumSelection": "-4", "minimumSelection": {}, "onClick": "next", "isOptional": "true"})"));
    EXPECT_TRUE(broken.memberKeys().isEmpty());
    EXPECT_TRUE(broken.listedKeys().isEmpty());
    EXPECT_EQ(broken.maximumSelection(), 0);
    EXPECT_EQ(broken.minimumSelection(), 0);
    EXPECT_FALSE(broken.action());
    EXPECT_TRUE(broken.validation().optional);
    EXPECT_EQ(broken.validation().userPropertyName, u"broken"_s);

    const OSTSelectionGroupDescription huge(u"huge"_s, test::jsonObject(R"({"maximumSelection": 1e300})"));
    EXPECT_EQ(huge.maximumSelection(), std::numeric_limits<int>::max());
}
