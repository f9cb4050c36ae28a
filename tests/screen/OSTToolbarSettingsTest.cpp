// The keyboard bar's settings: titles and bar style.

#include "screen/OSTToolbarSettings.h"
#include "support/OSTTestSupport.h"

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

TEST(ToolbarSettings, TitlesDefaultAndAnyStyleButDefaultIsBlack)
{
    using Style = OSTToolbarSettings::BarStyle;
    const auto settingsOf = [](const char *json) { return OSTToolbarSettings::fromProperties(test::jsonObject(json)); };
    EXPECT_EQ(settingsOf("{}"), (OSTToolbarSettings{u"Cancel"_s, u"Done"_s, Style::Default, false}));
    EXPECT_EQ(settingsOf(R"({"barStyle": "translucent", "cancelText": "No", "acceptText": 5})"),
              (OSTToolbarSettings{u"No"_s, u"Done"_s, Style::Black, true}));
    EXPECT_EQ(settingsOf(R"({"barStyle": "Default"})").barStyle, Style::Black) << "words are case-sensitive";
    EXPECT_EQ(settingsOf(R"({"barStyle": 1})").barStyle, Style::Default);
}
