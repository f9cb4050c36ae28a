// What a text field's description makes of hostile or partial values: limits, types, insets and
// the alignment words of each look.

#include "screen/OSTTextFieldDescription.h"
#include "support/OSTTestSupport.h"

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

OSTTextFieldDescription fieldOf(const char *json)
{
    return OSTTextFieldDescription(u"field"_s, test::jsonObject(json));
}

} // namespace

TEST(TextFieldDescription, HostileLimitsAndTypesFallBackToNoLimitAndPlainText)
{
    EXPECT_EQ(fieldOf(R"({"maxLength": -7})").maxLength(), -1);
    const OSTTextFieldDescription wrongTypes = fieldOf(R"({"textType": 3, "maxLength": [1], "minLength": "x"})");
    EXPECT_EQ(wrongTypes.textType(), OSTTextFieldTypePlain);
    EXPECT_EQ(wrongTypes.maxLength(), 0) << "no limit, as without the key";
    EXPECT_EQ(wrongTypes.minLength(), 0);
    EXPECT_FALSE(fieldOf(R"({"autoSubmit": true})").autoSubmits()) << "only a PIN submits itself";
    EXPECT_TRUE(fieldOf(R"({"textType": "phoneNumberPin"})").autoSubmits());
    const OSTTextFieldDescription phone = fieldOf(R"({"textType": "phoneNumber", "maxLength": "3", "minLength": "2"})");
    EXPECT_EQ(phone.maxLength(), 14);
    EXPECT_EQ(phone.minLength(), 2) << "held to the written maximum before the type's own";
}

TEST(TextFieldDescription, InsetsAndAlignmentWordsComeFromTheTextObjectThenTheLook)
{
    const OSTTextFieldDescription partial =
        fieldOf(R"({"contentInsets": [1, 2, 3, 4], "text": {"contentInsets": [5, 6, 7]}})");
    EXPECT_EQ(partial.normalLook().contentInsets, QMargins(2, 1, 4, 3)) << "three numbers are no insets";
    EXPECT_EQ(fieldOf(R"({"contentInsets": [1, 2, 3, 4], "text": {"contentInsets": [5, 6, 7, 8]}})").normalLook().contentInsets,
              QMargins(6, 5, 8, 7));
    EXPECT_EQ(fieldOf("{}").normalLook().contentInsets, std::nullopt) << "the field's default applies";

    const OSTTextFieldDescription words = fieldOf(R"({"textAlignment": "right", "alignment": "left",
        "horizontalAlignment": "center", "verticalAlignment": "bottom",
        "text": {"contentAlignment": 4, "alignment": "center"},
        "states": {"invalid": {"text": {"textAlignment": "left"}}}})");
    EXPECT_EQ(words.alignmentWord(), u"right"_s) << "contentAlignment, textAlignment, alignment: the first string";
    EXPECT_EQ(words.contentHorizontalAlignment(), UIControlContentHorizontalAlignmentCenter);
    EXPECT_EQ(words.verticalAlignment(), UIControlContentVerticalAlignmentBottom);
    EXPECT_EQ(words.normalLook().alignmentWord, u"center"_s);
    EXPECT_EQ(words.invalidLook().alignmentWord, u"left"_s);
    EXPECT_EQ(fieldOf(R"({"horizontalAlignment": 2})").contentHorizontalAlignment(), std::nullopt);
}
