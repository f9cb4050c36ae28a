// What a text field's description makes of hostile or partial values.

#include "screen/OSTTextFieldDescription.h"
#include "support/OSTTestSupport.h"

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

TEST(TextFieldDescription, HostileLimitsPartialInsetsAndAlignmentWordsFallBack)
{
    const auto fieldOf = [](const char *json) { return std::make_unique<OSTTextFieldDescription>(u"f"_s, test::jsonObject(json)); };
    EXPECT_EQ(fieldOf(R"({"maxLength": -7})")->maxLength(), -1);
    const auto wrongTypes = fieldOf(R"({"textType": 3, "maxLength": [1], "minLength": 5, "horizontalAlignment": 2})");
    EXPECT_EQ(wrongTypes->textType(), OSTTextFieldTypePlain);
    EXPECT_EQ(wrongTypes->maxLength(), 0) << "no limit, as without the key";
    EXPECT_EQ(wrongTypes->minLength(), 0) << "held to the maximum that was not written";
    EXPECT_EQ(wrongTypes->contentHorizontalAlignment(), std::nullopt);
    EXPECT_EQ(fieldOf(R"({"textType": "phoneNumber", "maxLength": "3", "minLength": "2"})")->minLength(), 2)
        << "held to the written maximum, not the type's";

    const auto looks = fieldOf(R"({"contentInsets": [1, 2, 3, 4], "textAlignment": "right", "alignment": "left",
        "text": {"contentInsets": [5, 6, 7], "contentAlignment": 4, "alignment": "center"},
        "states": {"invalid": {"text": {"textAlignment": "left", "contentInsets": [5, 6, 7, 8]}}}})");
    EXPECT_EQ(looks->normalLook().contentInsets, QMargins(2, 1, 4, 3)) << "three numbers are no insets";
    EXPECT_EQ(looks->invalidLook().contentInsets, QMargins(6, 5, 8, 7));
    EXPECT_EQ(looks->alignmentWord(), u"right"_s) << "contentAlignment, textAlignment, alignment: the first string";
    EXPECT_EQ(looks->normalLook().alignmentWord, u"center"_s);
    EXPECT_EQ(looks->invalidLook().alignmentWord, u"left"_s);
}
