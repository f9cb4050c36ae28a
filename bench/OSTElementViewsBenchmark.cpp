// Building and painting a phone-sized screen of 40 mixed elements at device pixel ratio 2:
// 12 labels, 10 buttons with background images, 10 image views and 8 switches on a gradient
// backdrop. Images are the host's own (found in the main bundle, as cached images would be), so
// no network is involved; building includes reading each element's description and delivering
// the images to their views.

#include "OSTWidgetBenchmarkMain.h"
#include "screen/OSTButtonDescription.h"
#include "screen/OSTSwitchDescription.h"
#include "widgets/OSTButton.h"
#include "widgets/OSTImageView.h"
#include "widgets/OSTLabel.h"
#include "widgets/OSTSwitch.h"

#include <QImage>

#include <benchmark/benchmark.h>

#include <memory>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

constexpr qreal devicePixelRatio = 2;
const QString imageAddress = u"https://images.example.test/%1.png"_s;

QRect cell(int index)
{
    // Five columns of eight rows over 375 × 667 points.
    return QRect(8 + (index % 5) * 73, 12 + (index / 5) * 82, 65, 70);
}

std::unique_ptr<QWidget> buildScreen()
{
    auto screen = std::make_unique<OSTView>(QRect(0, 0, 375, 667), OSTElementDescription(OSTElementKind::Shape, QString(),
        QVariantMap{{u"backgroundGradient"_s, QVariantMap{{u"colors"_s, QVariantList{u"#1E3C72"_s, u"#2A5298"_s}}}}}));
    QWidget *container = screen.get();
    for (int index = 0; index < 40; ++index) {
        const QRect frame = cell(index);
        const QString picture = imageAddress.arg(u"picture%1"_s.arg(index % 4));
        switch (index % 4) {
        case 0:
            if (index < 36) {
                new OSTLabel(frame, OSTLabelDescription(u"label%1"_s.arg(index),
                                 {{u"text"_s, u"Label number %1 wraps"_s.arg(index)}, {u"size"_s, u"13"_s},
                                  {u"textColor"_s, u"#FFFFFF"_s}, {u"alignment"_s, u"left"_s}}),
                             container);
                break;
            }
            [[fallthrough]];
        case 1:
            OSTButton::create(frame, std::make_shared<const OSTButtonDescription>(u"button%1"_s.arg(index), QVariantMap{{u"cornerRadius"_s, u"10"_s},
                                      {u"states"_s, QVariantMap{{u"normal"_s, QVariantMap{{u"text"_s, u"Go"_s},
                                                                                         {u"size"_s, u"15"_s},
                                                                                         {u"image"_s, picture}}},
                                                               {u"pressed"_s, QVariantMap{{u"textColor"_s, u"#FF0000"_s}}}}}}),
                              container);
            break;
        case 2:
            new OSTImageView(frame, OSTImageDescription(u"image%1"_s.arg(index), {{u"image"_s, picture}, {u"cornerRadius"_s, u"8"_s}}),
                             container);
            break;
        default:
            if (index % 8 == 3)
                new OSTSwitch(frame, OSTSwitchDescription(u"switch%1"_s.arg(index), {{u"defaultState"_s, u"pressed"_s}}), container);
            else
                new OSTLabel(frame, OSTLabelDescription(u"label%1"_s.arg(index),
                                 {{u"text"_s, u"Short"_s}, {u"size"_s, u"17"_s}, {u"textColor"_s, u"#FFCC00"_s},
                                  {u"shadow"_s, QVariantList{u"#000000"_s, u"2"_s, u"1"_s, u"1"_s}}}),
                             container);
        }
    }
    // Host images arrive on the next turn of the event loop.
    QCoreApplication::processEvents();
    return screen;
}

QImage ratioTwoTarget()
{
    QImage target(QSize(375, 667) * devicePixelRatio, QImage::Format_ARGB32_Premultiplied);
    target.setDevicePixelRatio(devicePixelRatio);
    return target;
}

void BM_BuildFortyElements(benchmark::State &state)
{
    for (auto _ : state) {
        auto screen = buildScreen();
        benchmark::DoNotOptimize(screen.get());
        state.PauseTiming();
        screen.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_BuildFortyElements)->Unit(benchmark::kMillisecond);

void BM_PaintFortyElements(benchmark::State &state)
{
    auto screen = buildScreen();
    QImage target = ratioTwoTarget();
    for (auto _ : state) {
        target.fill(Qt::transparent);
        screen->render(&target, QPoint(), QRegion(), QWidget::DrawChildren);
        benchmark::DoNotOptimize(target.constBits());
    }
}
BENCHMARK(BM_PaintFortyElements)->Unit(benchmark::kMillisecond);

// A label whose text shadow asks for a blur of 1000 points, repainted after its first paint (the
// blurred layer, made at a lower resolution, is kept). Target: under 16 ms a repaint.
void BM_RepaintLabelWithHugeShadowBlur(benchmark::State &state)
{
    OSTLabel label(QRect(0, 0, 343, 44), OSTLabelDescription(u"label"_s, {{u"text"_s, u"A shadow too wide to see"_s}, {u"size"_s, u"17"_s},
                                          {u"shadow"_s, QVariantList{u"#000000"_s, u"1000"_s, u"0"_s, u"2"_s}}}));
    QImage target(label.size() * devicePixelRatio, QImage::Format_ARGB32_Premultiplied);
    target.setDevicePixelRatio(devicePixelRatio);
    label.render(&target, QPoint(), QRegion(), QWidget::DrawChildren); // the first paint
    for (auto _ : state) {
        target.fill(Qt::transparent);
        label.render(&target, QPoint(), QRegion(), QWidget::DrawChildren);
        benchmark::DoNotOptimize(target.constBits());
    }
}
BENCHMARK(BM_RepaintLabelWithHugeShadowBlur)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    return ostrel::bench::runWidgetBenchmarks(argc, argv);
}
