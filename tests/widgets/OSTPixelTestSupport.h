#pragma once

// Captures of offscreen widgets and colour checks for the pixel tests of the element views.

#include <QBuffer>
#include <QColor>
#include <QImage>
#include <QJsonDocument>
#include <QPointF>
#include <QVariantMap>
#include <QWidget>

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <string>

namespace ostrel::test {

inline QVariantMap jsonObject(const char *text)
{
    return QJsonDocument::fromJson(QByteArray(text)).toVariant().toMap();
}

// The widget as the screen would show it at `ratio` device pixels per point.
//
// Ratio 1 is a plain QWidget::grab on the offscreen platform. Ratio 2 renders the widget with
// QWidget::render into an image whose device pixel ratio is 2: the painter's device reports
// ratio 2, so paths are antialiased and shadows blurred at device resolution, while the
// widget's own devicePixelRatio() still answers 1. That makes it the stricter check: code that
// took its ratio from the widget instead of from the device it paints on would paint at ratio 1
// and be scaled up, and the half-point edges tested at ratio 2 would come out blended. It also
// exercises the other way Qt draws widgets, through a painter (as previews and captures do),
// which treats graphics effects differently from grab. A grab on a real ratio-2 screen is
// checked separately, in a child process.
inline QImage capture(QWidget &widget, qreal ratio)
{
    if (ratio == 1)
        return widget.grab().toImage();
    QImage image((QSizeF(widget.size()) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

// The colour of the device pixel under a point given in points.
inline QColor pixelAt(const QImage &image, QPointF point)
{
    const QPointF device = point * image.devicePixelRatio();
    return image.pixelColor(int(device.x()), int(device.y()));
}

inline ::testing::AssertionResult colorNear(const QColor &actual, const QColor &expected,
                                            int tolerance = 3)
{
    const bool near = std::abs(actual.red() - expected.red()) <= tolerance
        && std::abs(actual.green() - expected.green()) <= tolerance
        && std::abs(actual.blue() - expected.blue()) <= tolerance
        && std::abs(actual.alpha() - expected.alpha()) <= tolerance;
    if (near)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
        << "got " << actual.name(QColor::HexArgb).toStdString() << ", expected "
        << expected.name(QColor::HexArgb).toStdString() << " within " << tolerance;
}

// Names the ratio-parameterised cases "Ratio1" and "Ratio2".
inline std::string ratioTestName(const ::testing::TestParamInfo<qreal> &parameter)
{
    return "Ratio" + std::to_string(int(parameter.param));
}

// A plain image of one colour, for image views and button backgrounds.
inline QImage imageOfColor(const QColor &color, QSize size = {20, 20})
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(color);
    return image;
}

// The image as the bytes of a PNG file, as a service or a bundle holds it.
inline QByteArray pngOf(const QImage &image)
{
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return png;
}

// How many device pixels of `area` (the whole image when empty) `accept` takes.
inline int countPixels(const QImage &image, const std::function<bool(QColor)> &accept, QRect area = {})
{
    if (area.isEmpty())
        area = image.rect();
    int count = 0;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            count += accept(image.pixelColor(x, y)) ? 1 : 0;
    return count;
}

} // namespace ostrel::test
