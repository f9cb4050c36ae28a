#include "paint/OSTPaintedLayerCache.h"

#include <QCache>
#include <QPaintEngine>
#include <QPainter>

namespace ostrel {

namespace {

// Enough for a full phone screen at ratio 3 several times over; a bitmap larger than the whole
// budget is painted but not kept.
constexpr qsizetype budgetBytes = 24 * 1024 * 1024;

QCache<QString, QImage> &layers()
{
    static QCache<QString, QImage> cache(budgetBytes);
    return cache;
}

qsizetype cost(const QImage &image)
{
    return std::max<qsizetype>(image.sizeInBytes(), 1);
}

bool fitsBudget(const QSize &size, qreal ratio)
{
    const QSizeF pixels = QSizeF(size) * ratio;
    return pixels.width() * pixels.height() * 4 <= qreal(budgetBytes);
}

QString keyAtRatio(const QString &key, const QSize &size, qreal ratio)
{
    return key + QStringLiteral("@%1x%2@%3").arg(size.width()).arg(size.height()).arg(ratio);
}

} // namespace

QImage OSTPaintedLayerCache::layer(const QString &key, const QSize &size, qreal ratio, const Painting &paint)
{
    if (size.isEmpty() || !(ratio > 0))
        return {};
    const QString fullKey = keyAtRatio(key, size, ratio);
    if (const QImage *kept = layers().object(fullKey))
        return *kept;
    QImage image((QSizeF(size) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return {};
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        paint(painter);
    }
    const qsizetype imageCost = cost(image);
    if (imageCost <= budgetBytes)
        layers().insert(fullKey, new QImage(image), imageCost);
    return image;
}

void OSTPaintedLayerCache::draw(QPainter &painter, const QString &key, const QSize &size, const Painting &paint)
{
    const qreal ratio = devicePixelRatio(painter);
    if (!fitsBudget(size, ratio)) {
        painter.save();
        paint(painter);
        painter.restore();
        return;
    }
    const QImage kept = layer(key, size, ratio, paint);
    if (!kept.isNull())
        painter.drawImage(QPoint(), kept);
}

qreal OSTPaintedLayerCache::devicePixelRatio(const QPainter &painter)
{
    // The engine's device, not painter.device(): a widget rendered into an image (previews,
    // captures) is painted through a redirection, and only the engine knows the image's ratio.
    const QPaintEngine *engine = painter.paintEngine();
    const QPaintDevice *device = engine && engine->paintDevice() ? engine->paintDevice() : painter.device();
    return device ? device->devicePixelRatioF() : 1;
}

qsizetype OSTPaintedLayerCache::count()
{
    return layers().count();
}

qsizetype OSTPaintedLayerCache::bytes()
{
    return layers().totalCost();
}

void OSTPaintedLayerCache::clear()
{
    layers().clear();
}

} // namespace ostrel
