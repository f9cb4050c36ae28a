#include "render/OSTBackgroundView.h"

#include "OSTPixelTestSupport.h"

#include <gtest/gtest.h>

using namespace ostrel;
using namespace ostrel::test;
using namespace Qt::StringLiterals;

namespace {

const QColor red(255, 0, 0);
const QColor green(0, 255, 0);
const QColor blue(0, 0, 255);
const QColor white(255, 255, 255);
const QColor black(0, 0, 0);
const QColor transparent(0, 0, 0, 0);

class BackgroundViewPixels : public ::testing::TestWithParam<qreal> {
protected:
    QImage paint(const QSize &size, const char *properties)
    {
        OSTBackgroundView view(QRect(QPoint(), size), jsonObject(properties));
        return capture(view, GetParam());
    }
};

} // namespace

TEST_P(BackgroundViewPixels, LinearGradientsRunBetweenTheirLastTwoColours)
{
    const QImage horizontal = paint({200, 100}, R"({"backgroundGradient":
        {"colors": ["#FF0000", "#0000FF"], "style": "horizontal"}})");
    EXPECT_TRUE(colorNear(pixelAt(horizontal, {0, 50}), red));
    EXPECT_TRUE(colorNear(pixelAt(horizontal, {199.5, 50}), blue));
    EXPECT_TRUE(colorNear(pixelAt(horizontal, {100, 50}), QColor(128, 0, 128), 4));
    EXPECT_EQ(pixelAt(horizontal, {50, 0}), pixelAt(horizontal, {50, 99.5})) << "no vertical change";

    const QImage vertical = paint({200, 100}, R"({"backgroundGradient":
        {"colors": ["#FF0000", "#0000FF"], "style": "Horizontal"}})");
    EXPECT_TRUE(colorNear(pixelAt(vertical, {100, 0}), red)) << "any other style is vertical";
    EXPECT_TRUE(colorNear(pixelAt(vertical, {100, 99.5}), blue));
    EXPECT_EQ(pixelAt(vertical, {0, 50}), pixelAt(vertical, {199.5, 50}));

    // With three colours only the last two show.
    const QImage image = paint({200, 50}, R"({"backgroundGradient":
        {"colors": ["#FF0000", "#00FF00", "#0000FF"], "style": "horizontal"}})");
    EXPECT_TRUE(colorNear(pixelAt(image, {0, 25}), green)) << "the first two stops are both at 0";
    EXPECT_TRUE(colorNear(pixelAt(image, {100, 25}), QColor(0, 128, 128), 4));
    EXPECT_TRUE(colorNear(pixelAt(image, {199.5, 25}), blue));
}

TEST_P(BackgroundViewPixels, RadialGradientFillsBeyondItsRadiusWithTheLastColour)
{
    const QImage image = paint({200, 200}, R"({"backgroundGradient":
        {"colors": ["#FFFFFF", "#000000"], "radius": "50", "baseColor": "#FF0000"}})");
    EXPECT_TRUE(colorNear(pixelAt(image, {100, 100}), white, 6));
    EXPECT_TRUE(colorNear(pixelAt(image, {125, 100}), QColor(128, 128, 128), 6));
    for (const QPointF corner : {QPointF(0, 0), QPointF(199.5, 0), QPointF(0, 199.5),
                                 QPointF(199.5, 199.5), QPointF(100, 40)})
        EXPECT_TRUE(colorNear(pixelAt(image, corner), black)) << corner.x() << "," << corner.y();

    const QImage numeric = paint({200, 200}, R"({"backgroundGradient":
        {"colors": ["#FFFFFF", "#000000"], "radius": 50}})");
    EXPECT_TRUE(colorNear(pixelAt(numeric, {0, 0}), black)) << "the radius may be a JSON number";
    EXPECT_TRUE(colorNear(pixelAt(numeric, {100, 100}), white, 6));
}

TEST_P(BackgroundViewPixels, CircleHasTransparentCornersAndAWideBoxBecomesACapsule)
{
    const QImage circle = paint({40, 40}, R"({"backgroundColor": "#FF0000", "cornerRadius": "circle"})");
    for (const QPointF corner : {QPointF(0, 0), QPointF(39.5, 0), QPointF(0, 39.5), QPointF(39.5, 39.5),
                                 QPointF(4, 4)})
        EXPECT_TRUE(colorNear(pixelAt(circle, corner), transparent)) << corner.x() << "," << corner.y();
    EXPECT_TRUE(colorNear(pixelAt(circle, {20, 20}), red));
    EXPECT_TRUE(colorNear(pixelAt(circle, {20, 1}), red)) << "the circle reaches the top edge";
    EXPECT_TRUE(colorNear(pixelAt(circle, {1, 20}), red));

    const QImage capsule = paint({100, 40}, R"({"backgroundColor": "#FF0000", "cornerRadius": "circle"})");
    EXPECT_TRUE(colorNear(pixelAt(capsule, {1, 1}), transparent));
    EXPECT_TRUE(colorNear(pixelAt(capsule, {98.5, 38.5}), transparent));
    EXPECT_TRUE(colorNear(pixelAt(capsule, {50, 0}), red)) << "straight top between the round ends";
    EXPECT_TRUE(colorNear(pixelAt(capsule, {20, 20}), red));
}

TEST_P(BackgroundViewPixels, BorderNeedsBothASizeAndAColourAndFollowsRoundedCorners)
{
    const QImage bordered = paint({100, 60}, R"({"backgroundColor": "#FFFFFF",
        "borderSize": "2", "borderColor": "#00FF00"})");
    for (const QPointF inBorder : {QPointF(0, 30), QPointF(1.5, 30), QPointF(50, 0), QPointF(50, 1.5),
                                   QPointF(99.5, 30), QPointF(50, 59.5)})
        EXPECT_TRUE(colorNear(pixelAt(bordered, inBorder), green)) << inBorder.x() << "," << inBorder.y();
    EXPECT_TRUE(colorNear(pixelAt(bordered, {2, 30}), white)) << "exactly two points wide";
    EXPECT_TRUE(colorNear(pixelAt(bordered, {50, 30}), white));

    for (const char *incomplete : {R"({"backgroundColor": "#FFFFFF", "borderSize": "2"})",
                                   R"({"backgroundColor": "#FFFFFF", "borderColor": "#00FF00"})",
                                   R"({"backgroundColor": "#FFFFFF", "borderSize": "0", "borderColor": "#00FF00"})",
                                   R"({"backgroundColor": "#FFFFFF", "borderSize": 2, "borderColor": "#00FF00"})"})
        EXPECT_TRUE(colorNear(pixelAt(paint({100, 60}, incomplete), {0, 30}), white)) << incomplete;

    // The border follows rounded corners.
    const QImage image = paint({100, 100}, R"({"backgroundColor": "#FFFFFF", "cornerRadius": "20",
        "borderSize": "4", "borderColor": "#0000FF"})");
    EXPECT_TRUE(colorNear(pixelAt(image, {1, 1}), transparent)) << "outside the rounded corner";
    // On the corner's diagonal the arc of radius 20 around (20, 20) passes at about (5.9, 5.9).
    EXPECT_TRUE(colorNear(pixelAt(image, {7.5, 7.5}), blue));
    EXPECT_TRUE(colorNear(pixelAt(image, {12, 12}), white));
    EXPECT_TRUE(colorNear(pixelAt(image, {50, 2}), blue));
}

TEST_P(BackgroundViewPixels, GradientReplacesTheBackgroundColourWhichShowsOnlyThroughTranslucentStops)
{
    const QImage withBase = paint({50, 50}, R"({"backgroundColor": "#FF0000",
        "backgroundGradient": {"baseColor": "#00FF00"}})");
    EXPECT_TRUE(colorNear(pixelAt(withBase, {25, 25}), green)) << "the base colour shows, not red";

    const QImage withoutBase = paint({50, 50}, R"({"backgroundColor": "#FF0000",
        "backgroundGradient": {"colors": []}})");
    EXPECT_TRUE(colorNear(pixelAt(withoutBase, {25, 25}), transparent));

    const QImage notAnObject = paint({50, 50}, R"({"backgroundColor": "#FF0000",
        "backgroundGradient": "#00FF00"})");
    EXPECT_TRUE(colorNear(pixelAt(notAnObject, {25, 25}), red)) << "a gradient must be an object";

    const QImage translucent = paint({50, 50}, R"({"backgroundGradient": {"baseColor": "#0000FF",
        "colors": ["#FF000080", "#FF000080"]}})");
    EXPECT_TRUE(colorNear(pixelAt(translucent, {25, 25}), QColor(128, 0, 127), 2));

    // Along the antialiased rim of a circle only the opaque gradient shows, not the black base.
    const QImage opaque = paint({40, 40}, R"({"cornerRadius": "circle", "backgroundGradient":
        {"baseColor": "#000000", "colors": ["#FFFFFF", "#FFFFFF"]}})");
    int rimPixels = 0;
    for (int x = 0; x < opaque.width(); ++x) {
        const QColor pixel = opaque.pixelColor(x, opaque.height() / 4);
        if (pixel.alpha() == 0 || pixel.alpha() == 255)
            continue;
        ++rimPixels;
        EXPECT_TRUE(colorNear(pixel, QColor(255, 255, 255, pixel.alpha()), 2)) << "x " << x;
    }
    EXPECT_GT(rimPixels, 0);
}

TEST_P(BackgroundViewPixels, GradientOfOneColourAndUnreadableStops)
{
    const QImage single = paint({50, 50}, R"({"backgroundGradient": {"colors": ["#0000FF"],
        "style": "horizontal"}})");
    EXPECT_TRUE(colorNear(pixelAt(single, {0, 0}), blue));
    EXPECT_TRUE(colorNear(pixelAt(single, {49.5, 49.5}), blue));

    const QImage unreadable = paint({100, 20}, R"({"backgroundGradient": {"colors": ["nonsense", 7],
        "style": "horizontal"}})");
    EXPECT_TRUE(colorNear(pixelAt(unreadable, {50, 10}), transparent)) << "unreadable stops are clear";
}

INSTANTIATE_TEST_SUITE_P(DevicePixelRatios, BackgroundViewPixels, ::testing::Values(1.0, 2.0),
                         ratioTestName);

TEST(BackgroundView, EdgesAreSharpAtDevicePixelRatioTwo)
{
    // A border of 1.5 points ends exactly on a device pixel boundary at ratio 2: the device
    // pixel inside it is pure border and the next one pure fill. Painted at ratio 1 and scaled,
    // the half-covered point would blend both.
    OSTBackgroundView view(QRect(0, 0, 40, 40), jsonObject(R"({"backgroundColor": "#FFFFFF",
        "borderSize": "1.5", "borderColor": "#000000"})"));
    const QImage image = capture(view, 2);
    ASSERT_EQ(image.size(), QSize(80, 80));
    EXPECT_EQ(image.pixelColor(2, 40), black);
    EXPECT_EQ(image.pixelColor(3, 40), white);
    EXPECT_EQ(image.pixelColor(40, 2), black);
    EXPECT_EQ(image.pixelColor(40, 3), white);
}

TEST(BackgroundView, CornerRadiusFollowsTheSizeForCircles)
{
    OSTBackgroundView circle(QRect(0, 0, 40, 40), jsonObject(R"({"cornerRadius": "circle"})"));
    EXPECT_EQ(circle.cornerRadius(), 20);
    circle.resize(100, 40);
    EXPECT_EQ(circle.cornerRadius(), 20) << "a capsule";
    circle.resize(100, 60);
    EXPECT_EQ(circle.cornerRadius(), 30);

    OSTBackgroundView rounded(QRect(0, 0, 100, 40), jsonObject(R"({"cornerRadius": "12.5"})"));
    EXPECT_EQ(rounded.cornerRadius(), 12.5);
    rounded.customizeWithProperties(jsonObject(R"({"cornerRadius": "500"})"));
    EXPECT_EQ(rounded.cornerRadius(), 20) << "no larger than half the shorter side";
    rounded.customizeWithProperties(jsonObject(R"({"cornerRadius": 12})"));
    EXPECT_EQ(rounded.cornerRadius(), 0) << "a JSON number is ignored";
    rounded.customizeWithProperties(jsonObject(R"({"cornerRadius": "round"})"));
    EXPECT_EQ(rounded.cornerRadius(), 0);
}

TEST(BackgroundView, RestylingReplacesTheWholeLook)
{
    OSTBackgroundView view(QRect(0, 0, 50, 50), jsonObject(R"({"backgroundGradient":
        {"colors": ["#FF0000", "#FF0000"]}, "borderSize": "3", "borderColor": "#0000FF"})"));
    ASSERT_TRUE(colorNear(pixelAt(capture(view, 1), {1, 25}), blue));

    view.customizeWithProperties(jsonObject(R"({"backgroundColor": "#00FF00"})"));
    const QImage image = capture(view, 1);
    EXPECT_TRUE(colorNear(pixelAt(image, {1, 25}), green)) << "the border is gone";
    EXPECT_TRUE(colorNear(pixelAt(image, {25, 25}), green)) << "the gradient is gone";
}
