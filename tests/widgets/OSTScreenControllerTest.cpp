// The screen controller with real widgets: screens that build or do not, and the status bar a
// screen asks for. (The image wait, the events, the actions and the social log-in are the screen
// model's, tested in tests/model.)

#include "OSTScreenTestSupport.h"

#include "support/OSTEventRecorder.h"
#include "widgets/OSTScreenController.h"

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

using test::screenWithJson;

TEST(ScreenController, ScreensThatDoNotBuildFailOnceWithALoadEventAndNoController)
{
    test::OSTEventRecorder events;
    EXPECT_EQ(OSTScreenController::controllerWithScreen(screenWithJson(u"{not json"_s), {}), nullptr);
    std::vector<std::unique_ptr<OSTScreenController>> made;
    const auto keep = [&made](OSTScreenController *controller) { made.emplace_back(controller); };
    OSTScreenController::controllerWithScreen(screenWithJson(u"[]"_s), {}, keep);
    OSTScreenController::controllerWithScreen(screenWithJson(u"{}"_s), {}, keep); // no required images: ready at once
    ASSERT_EQ(made.size(), 2u) << "each completion fires once";
    EXPECT_FALSE(made[0]);
    EXPECT_TRUE(made[1]);
    const auto loads = events.statistics(u"screen_load"_s);
    ASSERT_EQ(loads.size(), 3u);
    EXPECT_EQ(loads[0].value(u"type"_s), u"failure"_s);
    EXPECT_EQ(loads[1].value(u"type"_s), u"failure"_s);
}

TEST(ScreenController, StatusBarStyleFollowsTheScreen)
{
    struct Case {
        const char *style;
        bool hidden;
        OSTStatusBarStyle look;
    } const cases[] = {
        {R"({"statusBarStyle": "disabled"})", true, OSTStatusBarStyle::Default},
        {R"({"statusBarStyle": "white"})", false, OSTStatusBarStyle::LightContent},
        {R"({"statusBarStyle": "purple"})", false, OSTStatusBarStyle::Default},
        {R"({"statusBarStyle": 1})", false, OSTStatusBarStyle::Default},
        {"{}", false, OSTStatusBarStyle::Default},
    };
    for (const Case &c : cases) {
        std::unique_ptr<OSTScreenController> controller(
            OSTScreenController::controllerWithScreen(screenWithJson(QString::fromUtf8(c.style)), {}));
        ASSERT_TRUE(controller) << c.style;
        EXPECT_EQ(controller->prefersStatusBarHidden(), c.hidden) << c.style;
        EXPECT_EQ(controller->preferredStatusBarStyle(), c.look) << c.style;
    }
}

} // namespace
} // namespace ostrel
