// What a screen of an experience reaches: the experience manager's variables, substituted so that
// the screen still reads. (The host's answer to a social log-in is tested with the screen model.)

#include "model/OSTScreenEnvironment.h"

#include "OSTScreenTestSupport.h"

#include "experience/OSTExperienceManager.h"
#include "widgets/OSTLabel.h"

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

TEST(ScreenEnvironment, AVariableHoldingQuotesBackslashesAndLineBreaksShowsOnTheScreenAsItself)
{
    const OSTScreenModel::Environment environment = OSTScreenEnvironment::forExperience({375, 667});
    EXPECT_EQ(environment.area, QSizeF(375, 667));
    const QString name = u"Ada \"Countess\" Lovelace \\ of Ockham\n1815"_s;
    OSTExperienceManager::sharedManager().appendDynamicVariables({{u"first_name"_s, name}});
    const auto view = test::screenView(uR"({"labels": {"hello": {"text": "Hi {first_name}"}}})"_s, {375, 667},
                                       environment.substitution);
    ASSERT_TRUE(view) << "the screen's JSON still parses";
    EXPECT_EQ(qobject_cast<OSTLabel *>(view->views().value(u"hello"_s))->text(), u"Hi "_s + name);
}
