#include "widgets/OSTBackgroundView.h"

#include "OSTPixelTestSupport.h"

#include <gtest/gtest.h>

#include <vector>

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

OSTBoxLook boxLook(const char *json)
{
    return OSTBoxLook::fromProperties(jsonObject(json));
}

class BackgroundViewPixels : public ::testing::TestWithParam<qreal> {
protected:
    QImage paint(const QSize &size, const char *properties)
    {
        OSTBackgroundView view(QRect(QPoint(), size), boxLook(properties));
        return capture(view, GetParam());
    }
};

} // namespace

TEST_P(BackgroundViewPixels, EachLookShowsItsColoursWhereExpected)
{
    struct Probe {
        QPointF point;
        QColor expected;
        int tolerance = 3;
    };
    struct Case {
        QSize size;
        const char *properties;
        std::vector<Probe> probes;
    };
    const char *const circle = R"({"backgroundColor": "#FF0000", "cornerRadius": "circle"})";
    const Case cases[] = {
        // Linear gradients run between their last two colours; any style but "horizontal" is vertical.
        {{200, 100}, R"({"backgroundGradient": {"colors": ["#FF0000", "#0000FF"], "style": "horizontal"}})",
         {{{0, 50}, red}, {{199.5, 50}, blue}, {{100, 50}, QColor(128, 0, 128), 4}}},
        {{200, 100}, R"({"backgroundGradient": {"colors": ["#FF0000", "#0000FF"], "style": "Horizontal"}})",
         {{{100, 0}, red}, {{100, 99.5}, blue}}},
        {{200, 50}, R"({"backgroundGradient": {"colors": ["#FF0000", "#00FF00", "#0000FF"], "style": "horizontal"}})",
         {{{0, 25}, green}, {{100, 25}, QColor(0, 128, 128), 4}, {{199.5, 25}, blue}}},
        {{50, 50}, R"({"backgroundGradient": {"colors": ["#0000FF"], "style": "horizontal"}})",
         {{{0, 0}, blue}, {{49.5, 49.5}, blue}}},
        {{100, 20}, R"({"backgroundGradient": {"colors": ["nonsense", 7], "style": "horizontal"}})",
         {{{50, 10}, transparent}}},
        // A radial gradient fills beyond its radius (a string or a JSON number) with the last colour.
        {{200, 200},
         R"({"backgroundGradient": {"colors": ["#FFFFFF", "#000000"], "radius": "50", "baseColor": "#FF0000"}})",
         {{{100, 100}, white, 6}, {{125, 100}, QColor(128, 128, 128), 6}, {{0, 0}, black}, {{199.5, 0}, black},
          {{0, 199.5}, black}, {{199.5, 199.5}, black}, {{100, 40}, black}}},
        {{200, 200}, R"({"backgroundGradient": {"colors": ["#FFFFFF", "#000000"], "radius": 50}})",
         {{{0, 0}, black}, {{100, 100}, white, 6}}},
        // A circle has clear corners and reaches the edges; a wide box becomes a capsule.
        {{40, 40}, circle,
         {{{0, 0}, transparent}, {{39.5, 0}, transparent}, {{0, 39.5}, transparent}, {{39.5, 39.5}, transparent},
          {{4, 4}, transparent}, {{20, 20}, red}, {{20, 1}, red}, {{1, 20}, red}}},
        {{100, 40}, circle, {{{1, 1}, transparent}, {{98.5, 38.5}, transparent}, {{50, 0}, red}, {{20, 20}, red}}},
        // A border exactly two points wide, and none without both a size string and a colour.
        {{100, 60}, R"({"backgroundColor": "#FFFFFF", "borderSize": "2", "borderColor": "#00FF00"})",
         {{{0, 30}, green}, {{1.5, 30}, green}, {{50, 0}, green}, {{50, 1.5}, green}, {{99.5, 30}, green},
          {{50, 59.5}, green}, {{2, 30}, white}, {{50, 30}, white}}},
        {{100, 60}, R"({"backgroundColor": "#FFFFFF", "borderSize": "2"})", {{{0, 30}, white}}},
        {{100, 60}, R"({"backgroundColor": "#FFFFFF", "borderColor": "#00FF00"})", {{{0, 30}, white}}},
        {{100, 60}, R"({"backgroundColor": "#FFFFFF", "borderSize": "0", "borderColor": "#00FF00"})",
         {{{0, 30}, white}}},
        {{100, 60}, R"({"backgroundColor": "#FFFFFF", "borderSize": 2, "borderColor": "#00FF00"})", {{{0, 30}, white}}},
        // The border follows rounded corners: the arc of radius 20 passes (5.9, 5.9) on the diagonal.
        {{100, 100},
         R"({"backgroundColor": "#FFFFFF", "cornerRadius": "20", "borderSize": "4", "borderColor": "#0000FF"})",
         {{{1, 1}, transparent}, {{7.5, 7.5}, blue}, {{12, 12}, white}, {{50, 2}, blue}}},
        // A gradient object replaces the background colour, which shows only through translucent stops.
        {{50, 50}, R"({"backgroundColor": "#FF0000", "backgroundGradient": {"baseColor": "#00FF00"}})",
         {{{25, 25}, green}}},
        {{50, 50}, R"({"backgroundColor": "#FF0000", "backgroundGradient": {"colors": []}})",
         {{{25, 25}, transparent}}},
        {{50, 50}, R"({"backgroundColor": "#FF0000", "backgroundGradient": "#00FF00"})", {{{25, 25}, red}}},
        {{50, 50}, R"({"backgroundGradient": {"baseColor": "#0000FF", "colors": ["#FF000080", "#FF000080"]}})",
         {{{25, 25}, QColor(128, 0, 127), 2}}},
    };
    for (const Case &c : cases) {
        const QImage image = paint(c.size, c.properties);
        for (const Probe &probe : c.probes)
            EXPECT_TRUE(colorNear(pixelAt(image, probe.point), probe.expected, probe.tolerance))
                << c.properties << " at " << probe.point.x() << "," << probe.point.y();
    }
}

TEST_P(BackgroundViewPixels, LinearGradientsChangeAlongOneAxisAndCircleRimsShowOnlyTheOpaqueGradient)
{
    const QImage horizontal = paint({200, 100}, R"({"backgroundGradient":
        {"colors": ["#FF0000", "#0000FF"], "style": "horizontal"}})");
    EXPECT_EQ(pixelAt(horizontal, {50, 0}), pixelAt(horizontal, {50, 99.5}));
    const QImage vertical = paint({200, 100}, R"({"backgroundGradient":
        {"colors": ["#FF0000", "#0000FF"], "style": "Horizontal"}})");
    EXPECT_EQ(pixelAt(vertical, {0, 50}), pixelAt(vertical, {199.5, 50}));

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

INSTANTIATE_TEST_SUITE_P(DevicePixelRatios, BackgroundViewPixels, ::testing::Values(1.0, 2.0),
                         ratioTestName);

TEST(BackgroundView, EdgesAreSharpAtDevicePixelRatioTwo)
{
    // A border of 1.5 points ends exactly on a device pixel boundary at ratio 2: the device
    // pixel inside it is pure border and the next one pure fill. Painted at ratio 1 and scaled,
    // the half-covered point would blend both.
    OSTBackgroundView view(QRect(0, 0, 40, 40), boxLook(R"({"backgroundColor": "#FFFFFF",
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
    OSTBackgroundView circle(QRect(0, 0, 40, 40), boxLook(R"({"cornerRadius": "circle"})"));
    EXPECT_EQ(circle.cornerRadius(), 20);
    circle.resize(100, 40);
    EXPECT_EQ(circle.cornerRadius(), 20) << "a capsule";
    circle.resize(100, 60);
    EXPECT_EQ(circle.cornerRadius(), 30);

    OSTBackgroundView rounded(QRect(0, 0, 100, 40), boxLook(R"({"cornerRadius": "12.5"})"));
    EXPECT_EQ(rounded.cornerRadius(), 12.5);
    rounded.setLook(boxLook(R"({"cornerRadius": "500"})"));
    EXPECT_EQ(rounded.cornerRadius(), 20) << "no larger than half the shorter side";
}

TEST(BackgroundView, RestylingReplacesTheWholeLook)
{
    OSTBackgroundView view(QRect(0, 0, 50, 50), boxLook(R"({"backgroundGradient":
        {"colors": ["#FF0000", "#FF0000"]}, "borderSize": "3", "borderColor": "#0000FF"})"));
    ASSERT_TRUE(colorNear(pixelAt(capture(view, 1), {1, 25}), blue));

    view.setLook(boxLook(R"({"backgroundColor": "#00FF00"})"));
    const QImage image = capture(view, 1);
    EXPECT_TRUE(colorNear(pixelAt(image, {1, 25}), green)) << "the border is gone";
    EXPECT_TRUE(colorNear(pixelAt(image, {25, 25}), green)) << "the gradient is gone";
}
