// The keyboard bar's settings as a text field or picker reads them: titles and bar style.

#include "screen/OSTToolbarSettings.h"
#include "support/OSTTestSupport.h"

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

TEST(ToolbarSettings, TitlesDefaultAndAnyStyleButDefaultIsBlack)
{
    const OSTToolbarSettings plain = OSTToolbarSettings::fromProperties(test::jsonObject("{}"));
    EXPECT_EQ(plain, (OSTToolbarSettings{u"Cancel"_s, u"Done"_s, OSTToolbarSettings::BarStyle::Default, false}));

    const OSTToolbarSettings translucent = OSTToolbarSettings::fromProperties(
        test::jsonObject(R"({"barStyle": "translucent", "cancelText": "No", "acceptText": 5})"));
    EXPECT_EQ(translucent, (OSTToolbarSettings{u"No"_s, u"Done"_s, OSTToolbarSettings::BarStyle::Black, true}))
        << "a title that is no string keeps its default";

    const OSTToolbarSettings misspelt = OSTToolbarSettings::fromProperties(test::jsonObject(R"({"barStyle": "Default"})"));
    EXPECT_EQ(misspelt.barStyle, OSTToolbarSettings::BarStyle::Black) << "words are case-sensitive";
    EXPECT_FALSE(misspelt.translucent);
    EXPECT_EQ(OSTToolbarSettings::fromProperties(test::jsonObject(R"({"barStyle": 1})")).barStyle,
              OSTToolbarSettings::BarStyle::Default) << "a style that is no string is the default";
}
