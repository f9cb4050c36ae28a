// Labels, the rounded clipping of element boxes and the loading overlay, as a
// screen shows them (pixels at ratio 1 and 2) and as a user or assistive technology meets them.

#include "widgets/OSTBackgroundView.h"
#include "widgets/OSTLabel.h"
#include "widgets/OSTLoadingOverlay.h"
#include "widgets/OSTTextLabel.h"
#include "widgets/OSTView.h"

#include "OSTPixelTestSupport.h"

#include <QAccessible>
#include <QLineEdit>
#include <QPropertyAnimation>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

using test::capture;
using test::colorNear;
using test::countPixels;
using test::jsonObject;
using test::pixelAt;

// Finishes a fade at once: tests never wait for real time.
void finishFade(OSTLoadingOverlay &overlay)
{
    for (auto *animation : overlay.findChildren<QPropertyAnimation *>())
        if (animation->state() == QAbstractAnimation::Running)
            animation->setCurrentTime(animation->totalDuration());
}

OSTElementDescription shape(const char *json)
{
    return OSTElementDescription(OSTElementKind::Shape, u"shape"_s, jsonObject(json));
}

OSTLabelDescription label(const QVariantMap &properties)
{
    return OSTLabelDescription(u"label"_s, properties);
}

class ElementViewPixels : public ::testing::TestWithParam<qreal> {};

TEST_P(ElementViewPixels, LabelDrawsColouredUnderlinedShadowedTextWithItsLineSpacing)
{
    const qreal ratio = GetParam();
    const auto properties = jsonObject(R"({"text": "Hello\nthere", "size": "20", "textColor": "#FF0000",
        "style": "underlined", "alignment": "left", "backgroundColor": "#FFFFFF",
        "shadow": ["#0000FF", "2", "3", "3"]})");
    OSTLabel view(QRect(0, 0, 200, 120), label(properties));
    const QImage image = capture(view, ratio);
    const auto reddish = [](QColor c) { return c.red() > 200 && c.green() < 80; };
    const int red = countPixels(image, [](QColor c) { return c.red() > 200 && c.green() < 80 && c.blue() < 80; });
    const int blue = countPixels(image, [](QColor c) { return c.blue() > 150 && c.red() < 150 && c.green() < 150; });
    EXPECT_GT(red, 50 * ratio * ratio) << "the text is red";
    EXPECT_GT(blue, 20 * ratio * ratio) << "a blue shadow lies below and right of the text";
    // Left aligned: nothing red in the right half of the box.
    EXPECT_EQ(countPixels(image, reddish, QRect(int(120 * ratio), 0, int(80 * ratio), image.height())), 0);

    // Line spacing pushes the second line down: the inked height grows by about twice the
    // spacing (the block is centred, so it grows both ways).
    auto inkedRows = [&](const QImage &picture) {
        QList<int> rows;
        for (int y = 0; y < picture.height(); ++y)
            if (countPixels(picture, reddish, QRect(0, y, picture.width(), 1)))
                rows.append(y);
        return rows.isEmpty() ? 0 : rows.last() - rows.first();
    };
    auto spaced = properties;
    spaced.insert(u"lineSpacing"_s, u"20"_s);
    OSTLabel spacedLabel(QRect(0, 0, 200, 120), label(spaced));
    EXPECT_NEAR(inkedRows(capture(spacedLabel, ratio)) - inkedRows(image), 20 * ratio, 3 * ratio);
}

TEST_P(ElementViewPixels, RoundedBorderedGroupClipsItsMembersAndKeepsItsBorderOnTop)
{
    const qreal ratio = GetParam();
    OSTView group(QRect(0, 0, 100, 100), shape(R"({"backgroundColor": "#FFFFFF", "cornerRadius": "30",
        "borderSize": "4", "borderColor": "#0000FF"})"));
    // A member that fills the whole group, as a header image reaching the edges does.
    OSTView member(QRect(0, 0, 100, 100), shape(R"({"backgroundColor": "#FF0000"})"), group.container());
    const QImage image = capture(group, ratio);
    EXPECT_EQ(pixelAt(image, {1, 1}).alpha(), 0) << "the corner stays round";
    EXPECT_TRUE(colorNear(pixelAt(image, {50, 1}), QColor(0, 0, 255))) << "the border is drawn above the member";
    EXPECT_TRUE(colorNear(pixelAt(image, {1, 50}), QColor(0, 0, 255)));
    EXPECT_TRUE(colorNear(pixelAt(image, {50, 50}), QColor(255, 0, 0))) << "the member shows inside";

    // A square box without a border keeps its members as they are (no clipping layer).
    OSTView plain(QRect(0, 0, 100, 100), shape(R"({"backgroundColor": "#FFFFFF"})"));
    OSTView plainMember(QRect(0, 0, 100, 100), shape(R"({"backgroundColor": "#FF0000"})"), plain.container());
    EXPECT_EQ(plain.container()->graphicsEffect(), nullptr);
    EXPECT_TRUE(colorNear(pixelAt(capture(plain, ratio), {1, 1}), QColor(255, 0, 0)));
}

TEST_P(ElementViewPixels, OverlayDimsTheViewAndShowsTheIndicator)
{
    const qreal ratio = GetParam();
    OSTView view(QRect(0, 0, 200, 200), shape(R"({"backgroundColor": "#FFFFFF"})"));
    OSTLoadingOverlay overlay;
    overlay.presentOnView(&view);
    finishFade(overlay);
    const QImage image = capture(view, ratio);
    // White under black at 75 %: a quarter of the white remains.
    EXPECT_TRUE(colorNear(pixelAt(image, {10, 10}), QColor(64, 64, 64), 4));
    const QRect centre = QRect(QPoint(int(80 * ratio), int(80 * ratio)), QSize(int(40 * ratio), int(40 * ratio)));
    EXPECT_GT(countPixels(image, [](QColor c) { return c.red() > 150; }, centre), 10) << "white spokes in the middle";
}

INSTANTIATE_TEST_SUITE_P(DevicePixelRatios, ElementViewPixels, ::testing::Values(1.0, 2.0),
                         test::ratioTestName);

TEST(LoadingOverlay, BlocksClicksAndKeysOnlyWhilePresented)
{
    QWidget view;
    view.resize(200, 200);
    auto *field = new QLineEdit(&view);
    field->setGeometry(10, 10, 100, 30);
    view.show();
    field->setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));

    OSTLoadingOverlay overlay;
    overlay.dismiss(); // never presented: nothing happens
    EXPECT_FALSE(overlay.isVisible());

    overlay.presentOnView(&view);
    EXPECT_EQ(view.childAt(20, 20), &overlay) << "clicks reach the overlay, not the field";
    QTest::keyClicks(QApplication::focusWidget(), u"abc"_s);
    EXPECT_TRUE(field->text().isEmpty()) << "keys do not reach the covered input";
    view.resize(300, 250);
    EXPECT_EQ(overlay.geometry(), QRect(0, 0, 300, 250)) << "the overlay follows the view's size";

    overlay.dismiss();
    EXPECT_TRUE(overlay.isVisible()) << "it fades out first";
    finishFade(overlay);
    EXPECT_FALSE(overlay.isVisible());
    EXPECT_EQ(view.childAt(20, 20), field);
    QTest::keyClicks(field, u"abc"_s);
    EXPECT_EQ(field->text(), u"abc"_s);
}

TEST(Label, AccessibilityReadsStaticTextNamedByTheText)
{
    OSTLabel view(QRect(0, 0, 200, 40), label(jsonObject(R"({"text": "Welcome back", "size": "16"})")));
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(view.internalLabel());
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::StaticText);
    EXPECT_EQ(accessible->text(QAccessible::Name), u"Welcome back"_s);
    view.setText(QString());
    EXPECT_TRUE(view.text().isEmpty());
}

} // namespace
} // namespace ostrel
