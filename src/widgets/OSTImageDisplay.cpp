#include "widgets/OSTImageDisplay.h"

#include "paint/OSTPaintedLayerCache.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPainter>
#include <qdrawutil.h>

#include <mutex>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

QAccessibleInterface *accessibleImage(const QString &className, QObject *object)
{
    if (className == u"ostrel::OSTImageDisplay"_s && object && object->isWidgetType())
        return new QAccessibleWidget(static_cast<QWidget *>(object), QAccessible::Graphic);
    return nullptr;
}

} // namespace

OSTImageDisplay::OSTImageDisplay(QWidget *parent) : QWidget(parent)
{
    static std::once_flag accessibility;
    std::call_once(accessibility, [] { QAccessible::installFactory(accessibleImage); });
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
}

void OSTImageDisplay::setImage(const QImage &image)
{
    m_image = image;
    update();
}

void OSTImageDisplay::setContentMode(UIViewContentMode mode)
{
    m_contentMode = mode;
    update();
}

void OSTImageDisplay::setCapInsets(const std::optional<QMargins> &insets)
{
    m_capInsets = insets;
    update();
}

QMargins OSTImageDisplay::fittedInsets() const
{
    // Each pair of opposite insets shares at most the image's extent, in proportion.
    const QSizeF size = m_image.deviceIndependentSize();
    auto fit = [](int first, int second, qreal extent, int &fittedFirst, int &fittedSecond) {
        first = std::max(first, 0);
        second = std::max(second, 0);
        const qreal total = qreal(first) + second;
        const qreal scale = total > extent && total > 0 ? extent / total : 1;
        fittedFirst = int(first * scale);
        fittedSecond = int(second * scale);
    };
    QMargins fitted;
    int left = 0, right = 0, top = 0, bottom = 0;
    fit(m_capInsets->left(), m_capInsets->right(), size.width(), left, right);
    fit(m_capInsets->top(), m_capInsets->bottom(), size.height(), top, bottom);
    fitted.setLeft(left);
    fitted.setRight(right);
    fitted.setTop(top);
    fitted.setBottom(bottom);
    return fitted;
}

QRectF OSTImageDisplay::placement(const QSizeF &imageSize, const QRectF &bounds, UIViewContentMode mode)
{
    if (imageSize.isEmpty())
        return {};
    QSizeF size = imageSize;
    switch (mode) {
    case UIViewContentModeScaleToFill:
    case UIViewContentModeRedraw:
        return bounds;
    case UIViewContentModeScaleAspectFit:
        size = imageSize.scaled(bounds.size(), Qt::KeepAspectRatio);
        break;
    case UIViewContentModeScaleAspectFill:
        size = imageSize.scaled(bounds.size(), Qt::KeepAspectRatioByExpanding);
        break;
    default:
        break;
    }
    QRectF placed(QPointF(), size);
    placed.moveCenter(bounds.center());
    switch (mode) {
    case UIViewContentModeTop: placed.moveTop(bounds.top()); break;
    case UIViewContentModeBottom: placed.moveBottom(bounds.bottom()); break;
    case UIViewContentModeLeft: placed.moveLeft(bounds.left()); break;
    case UIViewContentModeRight: placed.moveRight(bounds.right()); break;
    case UIViewContentModeTopLeft: placed.moveTopLeft(bounds.topLeft()); break;
    case UIViewContentModeTopRight: placed.moveTopRight(bounds.topRight()); break;
    case UIViewContentModeBottomLeft: placed.moveBottomLeft(bounds.bottomLeft()); break;
    case UIViewContentModeBottomRight: placed.moveBottomRight(bounds.bottomRight()); break;
    default: break;
    }
    return placed;
}

void OSTImageDisplay::paintEvent(QPaintEvent *)
{
    if (m_image.isNull())
        return;
    QPainter painter(this);
    OSTPaintedLayerCache::draw(painter, layerKey(), size(), [this](QPainter &layerPainter) { paintImage(layerPainter); });
}

QString OSTImageDisplay::layerKey() const
{
    const QMargins insets = m_capInsets ? fittedInsets() : QMargins();
    return u"image %1 %2 %3 %4 %5 %6 %7"_s.arg(m_image.cacheKey())
        .arg(int(m_contentMode))
        .arg(m_capInsets ? 1 : 0)
        .arg(insets.left())
        .arg(insets.top())
        .arg(insets.right())
        .arg(insets.bottom());
}

void OSTImageDisplay::paintImage(QPainter &painter) const
{
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setClipRect(rect());
    if (m_capInsets) {
        const QMargins insets = fittedInsets();
        qDrawBorderPixmap(&painter, rect(), insets, QPixmap::fromImage(m_image), QRect(QPoint(), m_image.size()),
                          insets);
        return;
    }
    painter.drawImage(placement(m_image.deviceIndependentSize(), QRectF(rect()), m_contentMode), m_image);
}

} // namespace ostrel
