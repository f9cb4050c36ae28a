#include "paint/OSTAlphaBlur.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace ostrel {

namespace {

// Three successive box blurs approximate a Gaussian closely; these are their radii for a
// standard deviation of `sigma` pixels (the widths of "boxes for Gauss").
std::array<int, 3> boxRadiiForGaussian(qreal sigma)
{
    constexpr int passes = 3;
    const qreal variance = sigma * sigma;
    int lowerWidth = int(std::floor(std::sqrt(12 * variance / passes + 1)));
    if (lowerWidth % 2 == 0)
        --lowerWidth;
    const int upperWidth = lowerWidth + 2;
    const int lowerCount = qRound((12 * variance - passes * lowerWidth * lowerWidth
                                   - 4 * passes * lowerWidth - 3 * passes)
                                  / (-4.0 * lowerWidth - 4));
    std::array<int, 3> radii{};
    for (int pass = 0; pass < passes; ++pass)
        radii[pass] = ((pass < lowerCount ? lowerWidth : upperWidth) - 1) / 2;
    return radii;
}

// Replaces each value of a line by the mean of the values within `radius` of it; values beyond
// the line's ends count as 0. `stride` is the distance between neighbours in memory.
void boxBlurLine(uchar *line, int length, qsizetype stride, int radius, std::vector<int> &values)
{
    values.resize(length);
    for (int index = 0; index < length; ++index)
        values[index] = line[index * stride];
    const int width = 2 * radius + 1;
    int sum = 0;
    for (int index = 0; index < std::min(radius, length); ++index)
        sum += values[index];
    for (int index = 0; index < length; ++index) {
        if (index + radius < length)
            sum += values[index + radius];
        if (index - radius - 1 >= 0)
            sum -= values[index - radius - 1];
        line[index * stride] = uchar((sum + width / 2) / width);
    }
}

} // namespace

qreal OSTAlphaBlur::boundedSigma(qreal sigma)
{
    return std::isnan(sigma) ? 0 : std::clamp<qreal>(sigma, 0, maximumSigma);
}

void OSTAlphaBlur::blur(QImage &alphaMask, qreal sigma)
{
    sigma = boundedSigma(sigma);
    std::vector<int> values;
    uchar *bits = alphaMask.bits();
    const qsizetype bytesPerLine = alphaMask.bytesPerLine();
    for (const int radius : boxRadiiForGaussian(sigma)) {
        if (radius == 0)
            continue;
        for (int row = 0; row < alphaMask.height(); ++row)
            boxBlurLine(bits + row * bytesPerLine, alphaMask.width(), 1, radius, values);
        for (int column = 0; column < alphaMask.width(); ++column)
            boxBlurLine(bits + column, alphaMask.height(), bytesPerLine, radius, values);
    }
}

int OSTAlphaBlur::reach(qreal sigma)
{
    const auto radii = boxRadiiForGaussian(boundedSigma(sigma));
    return radii[0] + radii[1] + radii[2];
}

QImage OSTAlphaBlur::colorized(const QImage &alphaMask, const QColor &color)
{
    QImage image(alphaMask.size(), QImage::Format_ARGB32_Premultiplied);
    const QRgb rgba = color.rgba();
    for (int row = 0; row < alphaMask.height(); ++row) {
        const uchar *coverage = alphaMask.constScanLine(row);
        auto *pixels = reinterpret_cast<QRgb *>(image.scanLine(row));
        for (int column = 0; column < alphaMask.width(); ++column) {
            const int alpha = (coverage[column] * qAlpha(rgba) + 127) / 255;
            pixels[column] = qPremultiply(qRgba(qRed(rgba), qGreen(rgba), qBlue(rgba), alpha));
        }
    }
    return image;
}

} // namespace ostrel
