#pragma once

#include <QColor>
#include <QImage>

namespace ostrel {

// Soft shadows: a Gaussian blur of a coverage mask, and the mask turned into colour. Used by the
// drop shadow of element boxes and by text shadows.
class OSTAlphaBlur {
public:
    OSTAlphaBlur() = delete;

    // The largest standard deviation, in pixels, a blur takes. Callers blur wide shadows at a
    // lower resolution and stay far below it; the bound keeps the radius arithmetic from
    // overflowing whatever a caller asks (sigmas of 1e4 and more).
    static constexpr qreal maximumSigma = 1024;

    // `sigma` held to [0, maximumSigma]; not-a-number is 0.
    static qreal boundedSigma(qreal sigma);

    // Blurs `alphaMask` (Format_Alpha8) in place as a Gaussian of standard deviation `sigma`
    // pixels (bounded), approximated by three box blurs. Coverage beyond the edges counts as none.
    static void blur(QImage &alphaMask, qreal sigma);

    // How far, in pixels, the blur of standard deviation `sigma` (bounded) spreads coverage.
    static int reach(qreal sigma);

    // An ARGB32 premultiplied image of `color` whose opacity is the mask's coverage.
    static QImage colorized(const QImage &alphaMask, const QColor &color);
};

} // namespace ostrel
