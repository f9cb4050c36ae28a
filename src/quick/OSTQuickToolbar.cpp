#include "quick/OSTQuickToolbar.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPalette>

#include <algorithm>

namespace ostrel {

namespace {

constexpr int translucentAlpha = 200;
constexpr qreal buttonPadding = 12;
constexpr qreal minimumBarHeight = 44;

} // namespace

OSTQuickToolbar::OSTQuickToolbar(const OSTToolbarSettings &settings, QQuickItem *parent)
    : QQuickPaintedItem(parent),
      m_settings(settings)
{
    setAcceptedMouseButtons(Qt::LeftButton);
    setOpaquePainting(!isTranslucent());
    setHeight(barHeight());
}

qreal OSTQuickToolbar::barHeight()
{
    return std::max(minimumBarHeight, QFontMetricsF(QGuiApplication::font()).height() + 2 * buttonPadding);
}

qreal OSTQuickToolbar::buttonWidth(const QString &title) const
{
    return QFontMetricsF(QGuiApplication::font()).horizontalAdvance(title) + 2 * buttonPadding;
}

QRectF OSTQuickToolbar::cancelButtonRect() const
{
    return {0, 0, buttonWidth(cancelText()), height()};
}

QRectF OSTQuickToolbar::doneButtonRect() const
{
    const qreal doneWidth = buttonWidth(doneText());
    return {width() - doneWidth, 0, doneWidth, height()};
}

void OSTQuickToolbar::cancelTapped()
{
    if (m_cancelBlock)
        m_cancelBlock();
}

void OSTQuickToolbar::doneTapped()
{
    if (m_doneBlock)
        m_doneBlock();
}

QColor OSTQuickToolbar::backgroundColor() const
{
    if (barStyle() == BarStyle::Default)
        return QGuiApplication::palette().color(QPalette::Window);
    QColor background(Qt::black);
    if (isTranslucent())
        background.setAlpha(translucentAlpha);
    return background;
}

void OSTQuickToolbar::paint(QPainter *painter)
{
    painter->fillRect(boundingRect(), backgroundColor());
    const QColor titleColor = barStyle() == BarStyle::Default
        ? QGuiApplication::palette().color(QPalette::ButtonText)
        : QColor(Qt::white);
    painter->setPen(titleColor);
    painter->setFont(QGuiApplication::font());
    painter->drawText(cancelButtonRect(), Qt::AlignCenter, cancelText());
    painter->drawText(doneButtonRect(), Qt::AlignCenter, doneText());
}

void OSTQuickToolbar::mousePressEvent(QMouseEvent *event)
{
    event->accept();
}

void OSTQuickToolbar::mouseReleaseEvent(QMouseEvent *event)
{
    const QPointF position = event->position();
    // Done wins where a narrow bar makes the two overlap.
    if (doneButtonRect().contains(position))
        doneTapped();
    else if (cancelButtonRect().contains(position))
        cancelTapped();
}

} // namespace ostrel
