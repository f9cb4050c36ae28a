#include "widgets/OSTView.h"

#include "widgets/OSTBackgroundView.h"

#include "support/OSTChildProcess.h"

#include "OSTPixelTestSupport.h"

#include <QCoreApplication>
#include <QGraphicsEffect>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ostrel;
using namespace ostrel::test;
using namespace Qt::StringLiterals;

namespace {

const QColor red(255, 0, 0);
const QColor white(255, 255, 255);

OSTElementDescription shape(const char *json)
{
    return OSTElementDescription(OSTElementKind::Shape, u"shape"_s, jsonObject(json));
}

// An element view built the way element views are: the base only builds the container and the
// subclass styles itself once its own members exist.
class RecordingView : public OSTView {
public:
    RecordingView(const QRect &frame, const OSTElementDescription &description, QWidget *parent = nullptr)
        : OSTView(frame, description, Styling::InSubclassConstructor, parent),
          m_alphaBeforeStyling(alpha()), m_effectBeforeStyling(graphicsEffect() != nullptr)
    {
        customize(description);
    }

    qreal m_alphaBeforeStyling;
    bool m_effectBeforeStyling;
};

// A transparent stage on which an element view is placed, so that what it casts outside its
// own rectangle is captured too.
struct Stage {
    QWidget widget;
    Stage(int width, int height)
    {
        widget.setAttribute(Qt::WA_NoSystemBackground);
        widget.resize(width, height);
    }
};

class ViewPixels : public ::testing::TestWithParam<qreal> {};

// The element of the screen-ratio test: a white box with a 1.5-point black border, whose inner
// edge falls on a device pixel boundary only at ratio 2, and a shadow below it.
constexpr const char *screenRatioElement = R"({"backgroundColor": "#FFFFFF", "borderSize": "1.5",
    "borderColor": "#000000", "objectShadow": ["#000000", "4", "0", "8"]})";

// Child process: grabs a stage holding that element on whatever screen it was started with and
// saves the grab to the path given last.
const bool screenGrabChildRegistered = test::OSTChildProcess::registerMode(u"grab-element"_s, [](const QStringList &arguments) {
    Stage stage(100, 100);
    OSTView view(QRect(20, 20, 60, 40), shape(screenRatioElement), &stage.widget);
    const QPixmap grabbed = stage.widget.grab();
    if (grabbed.devicePixelRatio() != 2)
        return 2;
    return grabbed.save(arguments.last(), "PNG") ? 0 : 1;
});

} // namespace

TEST(View, PlainViewStylesItselfAndItsContainerFillsIt)
{
    OSTView view(QRect(10, 20, 80, 40), shape(R"({"alpha": "0.25", "objectShadow": ["#000000", "3", "1", "2"]})"));
    EXPECT_EQ(view.geometry(), QRect(10, 20, 80, 40));
    EXPECT_EQ(view.alpha(), 0.25);
    ASSERT_TRUE(view.objectShadow());
    EXPECT_EQ(view.objectShadow()->offset, QPointF(1, 2));
    ASSERT_NE(view.container(), nullptr);
    EXPECT_EQ(view.container()->parentWidget(), &view);
    EXPECT_EQ(view.children().constFirst(), view.container()) << "the container is the first child";
    EXPECT_EQ(view.container()->geometry(), QRect(0, 0, 80, 40));
    view.show();
    view.resize(200, 100);
    EXPECT_EQ(view.container()->geometry(), QRect(0, 0, 200, 100));
}

TEST(View, SubclassesAreStyledByTheirOwnConstructorOnly)
{
    const RecordingView view(QRect(0, 0, 50, 50), shape(R"({"alpha": "0.5"})"));
    EXPECT_EQ(view.m_alphaBeforeStyling, 1.0) << "the base constructor must not style a subclass";
    EXPECT_FALSE(view.m_effectBeforeStyling);
    EXPECT_EQ(view.alpha(), 0.5) << "styled by the subclass";
    EXPECT_NE(view.graphicsEffect(), nullptr);
}

TEST(View, RestylingWithoutEffectsRemovesThem)
{
    OSTView view(QRect(0, 0, 40, 40), shape(R"({"alpha": "0.5",
        "objectShadow": ["#000000", "4", "0", "2"], "backgroundColor": "#FF0000"})"));
    EXPECT_NE(view.graphicsEffect(), nullptr);

    view.customize(shape(R"({"backgroundColor": "#FFFFFF"})"));
    EXPECT_EQ(view.alpha(), 1.0);
    EXPECT_FALSE(view.objectShadow());
    EXPECT_EQ(view.graphicsEffect(), nullptr) << "an opaque view without shadow paints directly";
    EXPECT_TRUE(colorNear(pixelAt(capture(view, 1), {20, 20}), white)) << "the container restyled too";
}

TEST_P(ViewPixels, AlphaFadesTheWholeElementButAJsonNumberIsIgnored)
{
    Stage stage(100, 50);
    OSTView faded(QRect(0, 0, 50, 50), shape(R"({"alpha": "0.5", "backgroundColor": "#FF0000"})"),
                  &stage.widget);
    OSTView ignored(QRect(50, 0, 50, 50), shape(R"({"alpha": 0.5, "backgroundColor": "#FF0000"})"),
                    &stage.widget);
    // A child of the faded element fades with it.
    OSTView child(QRect(10, 10, 10, 10), shape(R"({"backgroundColor": "#FFFFFF"})"),
                  faded.container());

    const QImage image = capture(stage.widget, GetParam());
    EXPECT_TRUE(colorNear(pixelAt(image, {5, 25}), QColor(255, 0, 0, 128), 2));
    EXPECT_TRUE(colorNear(pixelAt(image, {15, 15}), QColor(255, 255, 255, 128), 2));
    EXPECT_TRUE(colorNear(pixelAt(image, {75, 25}), red));
}

TEST_P(ViewPixels, ObjectShadowFallsOutsideTheViewAlongItsOffset)
{
    Stage stage(200, 200);
    OSTView view(QRect(50, 50, 100, 100), shape(R"({"backgroundColor": "#FFFFFF",
        "cornerRadius": "10", "objectShadow": ["#000000", "8", "0", "10"]})"), &stage.widget);
    const QImage image = capture(stage.widget, GetParam());

    EXPECT_TRUE(colorNear(pixelAt(image, {100, 100}), white)) << "the view covers its own shadow";
    const int below = pixelAt(image, {100, 155}).alpha();
    const int above = pixelAt(image, {100, 47}).alpha();
    const int left = pixelAt(image, {47, 105}).alpha();
    const int right = pixelAt(image, {152.5, 105}).alpha();
    EXPECT_GT(below, 150) << "the shadow is offset downwards";
    EXPECT_LT(above, 40);
    EXPECT_GT(left, 40);
    EXPECT_NEAR(left, right, 8) << "no horizontal offset, so both sides alike";
    EXPECT_EQ(pixelAt(image, {100, 185}).alpha(), 0) << "the blur ends within about 1.5 radii";
    EXPECT_EQ(pixelAt(image, {10, 10}).alpha(), 0);
    EXPECT_TRUE(colorNear(pixelAt(image, {100, 155}), QColor(0, 0, 0, below), 0)) << "black shadow";
}

TEST_P(ViewPixels, ObjectShadowFollowsTheOutlineIsHiddenWhenClearAndFadesWithItsView)
{
    Stage outlineStage(120, 120);
    OSTView clearView(QRect(20, 20, 80, 80), shape(R"({"cornerRadius": "circle",
        "objectShadow": ["#FF0000", "2", "0", "0"]})"), &outlineStage.widget);
    const QImage outline = capture(outlineStage.widget, GetParam());
    EXPECT_TRUE(colorNear(pixelAt(outline, {60, 60}), red)) << "seen through a clear view";
    EXPECT_EQ(pixelAt(outline, {22, 22}).alpha(), 0) << "the shadow of a circle has no corners";

    Stage clearStage(100, 100);
    OSTView clearShadow(QRect(25, 25, 50, 50), shape(R"({"backgroundColor": "#FFFFFF",
        "objectShadow": ["#0000", "6", "0", "6"]})"), &clearStage.widget);
    const QImage clear = capture(clearStage.widget, GetParam());
    EXPECT_EQ(pixelAt(clear, {50, 80}).alpha(), 0);
    EXPECT_TRUE(colorNear(pixelAt(clear, {50, 50}), white));

    Stage fadedStage(100, 100);
    OSTView faded(QRect(25, 25, 50, 50), shape(R"({"alpha": "0.5", "backgroundColor": "#FFFFFF",
        "objectShadow": ["#000000", "4", "0", "0"]})"), &fadedStage.widget);
    const QImage image = capture(fadedStage.widget, GetParam());
    // Faded as a group, the shadow beneath the white box does not darken it.
    EXPECT_TRUE(colorNear(pixelAt(image, {50, 50}), QColor(255, 255, 255, 128), 2));
    const int outside = pixelAt(image, {50, 76}).alpha();
    EXPECT_GT(outside, 0);
    EXPECT_LE(outside, 128) << "the shadow fades with the view";
}

INSTANTIATE_TEST_SUITE_P(DevicePixelRatios, ViewPixels, ::testing::Values(1.0, 2.0),
                         ratioTestName);

TEST(View, GrabOnARatioTwoScreenPaintsAtDeviceResolution)
{
    // The offscreen screen takes its ratio from QT_SCALE_FACTOR, read once at start-up, so the
    // grab runs in a child process started with ratio 2, as on a high-density display.
    QTemporaryDir folder;
    const QString path = folder.filePath(u"grab.png"_s);
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"QT_SCALE_FACTOR"_s, u"2"_s);
    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    child.setProcessEnvironment(environment);
    child.start(QCoreApplication::applicationFilePath(),
                {test::OSTChildProcess::argumentFor(u"grab-element"_s), path});
    ASSERT_TRUE(child.waitForFinished(60000));
    ASSERT_EQ(child.exitCode(), 0) << "2 means the screen's ratio was not 2; "
                                   << child.readAllStandardError().toStdString();

    const QImage image(path);
    ASSERT_EQ(image.size(), QSize(200, 200));
    EXPECT_EQ(image.pixelColor(42, 100), QColor(Qt::black)) << "last device pixel of the border";
    EXPECT_EQ(image.pixelColor(43, 100), QColor(Qt::white)) << "first device pixel inside it";
    EXPECT_GT(image.pixelColor(100, 125).alpha(), 100) << "the shadow below the element";
    EXPECT_EQ(image.pixelColor(100, 30).alpha(), 0) << "and none above it";
}

TEST(View, HostileShadowValuesStayWithinBoundedMemory)
{
    // At full resolution these blurs would need images tens of thousands of pixels a side, and
    // far offsets with opacity a layer as large. All must stay bounded and still draw.
    Stage softStage(200, 200);
    OSTView wide(QRect(50, 50, 100, 100), shape(R"({"backgroundColor": "#FFFFFF",
        "cornerRadius": "circle", "objectShadow": ["#000000", "400", "0", "0"]})"), &softStage.widget);
    const QImage soft = capture(softStage.widget, 2);
    EXPECT_TRUE(colorNear(pixelAt(soft, {100, 100}), QColor(Qt::white)));
    EXPECT_GT(pixelAt(soft, {170, 100}).alpha(), 0) << "the wide shadow is faint but there";
    EXPECT_LT(pixelAt(soft, {170, 100}).alpha(), 16);

    Stage hostileStage(100, 100);
    OSTView huge(QRect(60, 60, 20, 20), shape(R"({"backgroundColor": "#0000FF",
        "objectShadow": ["#000000", "1e7", "0", "0"]})"), &hostileStage.widget);
    OSTView far(QRect(0, 0, 20, 20), shape(R"({"alpha": "0.5", "backgroundColor": "#FF0000",
        "objectShadow": ["#000000", "4", "1e9", "-1e9"]})"), &hostileStage.widget);
    const QImage hostile = capture(hostileStage.widget, 2);
    EXPECT_TRUE(colorNear(pixelAt(hostile, {70, 70}), QColor(Qt::blue)));
    EXPECT_TRUE(colorNear(pixelAt(hostile, {10, 10}), QColor(255, 0, 0, 128), 2));
}
