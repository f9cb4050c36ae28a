#include <ostrel/OSTPropertyConversions.h>

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

TEST(PropertyConversions, WordsAreReadExactlyAndAnythingElseGivesTheDefault)
{
    EXPECT_EQ(NSTextAlignmentFromString(u"right"_s), NSTextAlignmentRight);
    EXPECT_EQ(UIKeyboardTypeFromString(u"URL"_s), UIKeyboardTypeURL);
    EXPECT_EQ(OSTTextFieldTypeFromString(u"phoneNumberPin"_s), OSTTextFieldTypePhoneNumberPin);
    for (const std::optional<QString> &other :
         {std::optional<QString>(), std::optional(QString()), std::optional(u""_s), std::optional(u"Right"_s),
          std::optional(u" right"_s), std::optional(u"RIGHT"_s), std::optional(u"middle"_s)})
        EXPECT_EQ(NSTextAlignmentFromString(other), NSTextAlignmentCenter) << other.value_or(u"none"_s).toStdString();
    EXPECT_EQ(UIViewContentModeFromString(u"redraw"_s), UIViewContentModeScaleAspectFill)
        << "redraw has no word on purpose";
    EXPECT_EQ(UIControlContentHorizontalAlignmentFromString(u"center"_s),
              UIControlContentHorizontalAlignmentCenter);
    EXPECT_EQ(UIDatePickerModeFromString(u"date"_s), UIDatePickerModeDate);
}
