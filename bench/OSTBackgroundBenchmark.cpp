// The cost of painting an element's box: a phone-sized (375 x 667 point) element at device pixel
// ratio 2 with a vertical gradient, a border, rounded corners and an object shadow. A frame at
// 60 Hz has 16.7 ms, and a screen paints many elements besides its backdrop.
//
// The element is rendered into an image whose device pixel ratio is 2, as a ratio-2 screen's
// backing store receives it, so paths are antialiased and the shadow is blurred at device
// resolution.

#include "OSTBenchmarkRunner.h"
#include "widgets/OSTView.h"

#include <QApplication>
#include <QImage>
#include <QJsonDocument>

#include <benchmark/benchmark.h>

#include <memory>

using namespace ostrel;

namespace {

constexpr qreal devicePixelRatio = 2;
const QRect elementFrame(24, 24, 375, 667);

std::unique_ptr<const OSTElementDescription> elementDescription(const char *shadowRadius, bool withShadow = true)
{
    const QByteArray json = QByteArray(R"({
        "backgroundGradient": {"colors": ["#4A90E2", "#9013FE", "#FFFFFF"], "baseColor": "#FFFFFF"},
        "borderSize": "2", "borderColor": "#1B1464", "cornerRadius": "24",
        "objectShadow": ["#00000080", ")") + shadowRadius + R"(", "0", "6"]})";
    QVariantMap properties = QJsonDocument::fromJson(json).toVariant().toMap();
    if (!withShadow)
        properties.remove(QStringLiteral("objectShadow"));
    return std::make_unique<const OSTElementDescription>(OSTElementKind::Shape, QStringLiteral("element"), properties);
}

// The element on a transparent stage large enough for its shadow, and the ratio-2 image it is
// painted into.
struct Scene {
    QWidget stage;
    OSTView *element;
    QImage target;

    Scene()
        : element(new OSTView(elementFrame, *elementDescription("12"), &stage)),
          target(QSize(elementFrame.right() + 25, elementFrame.bottom() + 25) * devicePixelRatio,
                 QImage::Format_ARGB32_Premultiplied)
    {
        stage.setAttribute(Qt::WA_NoSystemBackground);
        stage.resize(target.size() / devicePixelRatio);
        target.setDevicePixelRatio(devicePixelRatio);
    }

    void paint()
    {
        target.fill(Qt::transparent);
        stage.render(&target, QPoint(), QRegion(), QWidget::DrawChildren);
        benchmark::DoNotOptimize(target.constBits());
    }
};

// A repaint of an unchanged element: the shadow's blurred image is already made.
void BM_PaintElementBox(benchmark::State &state)
{
    Scene scene;
    scene.paint();
    for (auto _ : state)
        scene.paint();
}
BENCHMARK(BM_PaintElementBox)->Unit(benchmark::kMillisecond);

// The first paint after a restyle that changes the shadow, which blurs its image anew. The two
// looks are read before the loop: restyling takes a read description.
void BM_RestyleAndPaintElementBox(benchmark::State &state)
{
    Scene scene;
    const std::unique_ptr<const OSTElementDescription> styles[] = {elementDescription("12"), elementDescription("13")};
    int next = 0;
    for (auto _ : state) {
        scene.element->customize(*styles[next]);
        next = 1 - next;
        scene.paint();
    }
}
BENCHMARK(BM_RestyleAndPaintElementBox)->Unit(benchmark::kMillisecond);

// The box alone, without shadow or opacity, so painted without any layer.
void BM_PaintElementBoxWithoutShadow(benchmark::State &state)
{
    Scene scene;
    scene.element->customize(*elementDescription("12", false));
    scene.paint();
    for (auto _ : state)
        scene.paint();
}
BENCHMARK(BM_PaintElementBoxWithoutShadow)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    return ostrel::bench::runRegisteredBenchmarks(argc, argv);
}
