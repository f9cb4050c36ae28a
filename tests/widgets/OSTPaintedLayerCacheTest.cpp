// Layers painted once and drawn again as copies: what is kept, when it is painted again, and
// that views drawing through kept layers show what they would have painted directly.

#include "widgets/OSTBackgroundView.h"
#include "widgets/OSTImageDisplay.h"
#include "paint/OSTPaintedLayerCache.h"
#include "widgets/OSTSwitchControl.h"
#include "widgets/OSTView.h"

#include "OSTPixelTestSupport.h"

#include <QPainter>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

using test::capture;
using test::colorNear;
using test::imageOfColor;
using test::jsonObject;
using test::pixelAt;

TEST(PaintedLayerCache, PaintsOncePerKeySizeAndRatioAndLetsTheOldestGoBeyondItsBudget)
{
    OSTPaintedLayerCache::clear();
    int paintings = 0;
    const auto paintRed = [&paintings](QPainter &painter) {
        ++paintings;
        painter.fillRect(QRectF(0, 0, 5, 5), Qt::red);
    };

    const QImage first = OSTPaintedLayerCache::layer(u"red"_s, {10, 10}, 2, paintRed);
    ASSERT_EQ(first.size(), QSize(20, 20)) << "device pixels";
    EXPECT_EQ(first.devicePixelRatio(), 2);
    EXPECT_EQ(first.format(), QImage::Format_ARGB32_Premultiplied);
    EXPECT_TRUE(colorNear(pixelAt(first, {2, 2}), QColor(Qt::red)));
    EXPECT_EQ(pixelAt(first, {7, 7}).alpha(), 0) << "unpainted parts stay clear";
    EXPECT_EQ(first.cacheKey(), OSTPaintedLayerCache::layer(u"red"_s, {10, 10}, 2, paintRed).cacheKey());
    EXPECT_EQ(paintings, 1);

    OSTPaintedLayerCache::layer(u"red"_s, {10, 10}, 1, paintRed);
    OSTPaintedLayerCache::layer(u"red"_s, {11, 10}, 2, paintRed);
    OSTPaintedLayerCache::layer(u"other"_s, {10, 10}, 2, paintRed);
    EXPECT_EQ(paintings, 4) << "another ratio, size or key is another layer";
    EXPECT_EQ(OSTPaintedLayerCache::count(), 4);

    EXPECT_TRUE(OSTPaintedLayerCache::layer(u"empty"_s, {0, 10}, 2, paintRed).isNull());
    EXPECT_TRUE(OSTPaintedLayerCache::layer(u"no ratio"_s, {10, 10}, 0, paintRed).isNull());
    EXPECT_EQ(paintings, 4) << "nothing is painted for an empty layer";

    // Full screens at ratio 3 (about 9 MB each): only the most recent few fit the budget.
    for (int index = 0; index < 6; ++index)
        OSTPaintedLayerCache::layer(u"screen %1"_s.arg(index), {375, 667}, 3, paintRed);
    EXPECT_LE(OSTPaintedLayerCache::bytes(), 24 * 1024 * 1024);
    const int before = paintings;
    OSTPaintedLayerCache::layer(u"screen 5"_s, {375, 667}, 3, paintRed);
    EXPECT_EQ(paintings, before) << "the most recent layer is kept";
    OSTPaintedLayerCache::layer(u"screen 0"_s, {375, 667}, 3, paintRed);
    EXPECT_EQ(paintings, before + 1) << "the oldest went first";
}

TEST(PaintedLayerCache, AViewLargerThanTheWholeBudgetPaintsStraightOntoTheScreen)
{
    OSTPaintedLayerCache::clear();
    OSTImageDisplay display;
    display.resize(3000, 2200); // 26 MB at ratio 1
    display.setContentMode(UIViewContentModeScaleToFill);
    display.setImage(imageOfColor(Qt::red));
    const QImage image = capture(display, 1);
    EXPECT_TRUE(colorNear(pixelAt(image, {2990, 2190}), QColor(Qt::red)));
    EXPECT_EQ(OSTPaintedLayerCache::count(), 0) << "nothing kept";

    display.resize(300, 220);
    EXPECT_TRUE(colorNear(pixelAt(capture(display, 1), {290, 210}), QColor(Qt::red)));
    EXPECT_EQ(OSTPaintedLayerCache::count(), 1);
}

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
