// Views drawing through kept layers (OSTPaintedLayerCache) show every change of what they
// depict, as they would have painted it directly.

#include "widgets/OSTBackgroundView.h"
#include "widgets/OSTImageDisplay.h"
#include "widgets/OSTSwitchControl.h"
#include "widgets/OSTView.h"

#include "OSTPixelTestSupport.h"

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

using test::capture;
using test::colorNear;
using test::imageOfColor;
using test::jsonObject;
using test::pixelAt;

class KeptLayerPixels : public ::testing::TestWithParam<qreal> {};

TEST_P(KeptLayerPixels, ViewsShowEveryChangeOfWhatTheirKeptLayersDepictAndMatchDirectPainting)
{
    const qreal ratio = GetParam();
    OSTImageDisplay display;
    display.resize(40, 40);
    display.setContentMode(UIViewContentModeScaleToFill);
    display.setImage(imageOfColor(Qt::red));
    EXPECT_TRUE(colorNear(pixelAt(capture(display, ratio), {20, 20}), QColor(Qt::red)));
    display.setImage(imageOfColor(Qt::blue));
    EXPECT_TRUE(colorNear(pixelAt(capture(display, ratio), {20, 20}), QColor(Qt::blue))) << "a new image shows";
    QImage halves = imageOfColor(Qt::green, {20, 10});
    for (int y = 0; y < 10; ++y)
        for (int x = 10; x < 20; ++x)
            halves.setPixelColor(x, y, Qt::yellow);
    display.setImage(halves);
    display.setContentMode(UIViewContentModeLeft);
    const QImage left = capture(display, ratio);
    EXPECT_TRUE(colorNear(pixelAt(left, {5, 20}), QColor(Qt::green))) << "a new content mode places it anew";
    EXPECT_EQ(pixelAt(left, {35, 20}).alpha(), 0);

    // A rounded, bordered box with a member: the border follows a change of colour.
    const auto shape = [](const char *json) {
        return OSTElementDescription(OSTElementKind::Shape, QString(), jsonObject(json));
    };
    OSTView group(QRect(0, 0, 60, 60), shape(R"({"cornerRadius": "12", "borderSize": "3", "borderColor": "#FF0000"})"));
    auto *member = new OSTView(QRect(0, 0, 60, 60), shape(R"({"backgroundColor": "#0000FF"})"), group.container());
    member->show();
    EXPECT_TRUE(colorNear(pixelAt(capture(group, ratio), {30, 1}), QColor(Qt::red)));
    EXPECT_EQ(pixelAt(capture(group, ratio), {0.5, 0.5}).alpha(), 0) << "the member is cut round";
    group.customize(shape(R"({"cornerRadius": "12", "borderSize": "3", "borderColor": "#00FF00"})"));
    EXPECT_TRUE(colorNear(pixelAt(capture(group, ratio), {30, 1}), QColor(Qt::green)));
    EXPECT_TRUE(colorNear(pixelAt(capture(group, ratio), {30, 30}), QColor(Qt::blue)));

    // A switch at rest is drawn from a kept layer; turning it off shows another one.
    OSTSwitchControl kept;
    kept.setOn(true, OSTSwitchControl::Animation::Immediate);
    const QImage fromLayer = capture(kept, ratio);
    EXPECT_TRUE(colorNear(pixelAt(fromLayer, {10, 15}), QColor(52, 199, 89))) << "the on track";
    kept.setOn(false, OSTSwitchControl::Animation::Immediate);
    EXPECT_FALSE(colorNear(pixelAt(capture(kept, ratio), {10, 15}), QColor(52, 199, 89))) << "off is another layer";
}

INSTANTIATE_TEST_SUITE_P(Ratios, KeptLayerPixels, ::testing::Values(1.0, 2.0), test::ratioTestName);

} // namespace
} // namespace ostrel
