#include "widgets/OSTBackgroundView.h"

#include "widgets/OSTRoundedClipEffect.h"

#include <QChildEvent>
#include <QPainter>

namespace ostrel {

OSTBackgroundView::OSTBackgroundView(const QRect &frame, const OSTBoxLook &look, QWidget *parent)
    : QWidget(parent)
{
    // Only what paintEvent draws is visible: no palette background, even when grabbed.
    setAttribute(Qt::WA_NoSystemBackground);
    setGeometry(frame);
    setLook(look);
}

void OSTBackgroundView::setLook(const OSTBoxLook &look)
{
    m_boxPainter = OSTBoxPainter(look);
    updateChildClipping();
    update();
}

void OSTBackgroundView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    paintBox(painter);
}

void OSTBackgroundView::paintBox(QPainter &painter) const
{
    // With children, the border is drawn above them by the clip effect.
    m_boxPainter.paint(painter, size(), clipsChildren() ? OSTBoxPainter::Border::Omitted : OSTBoxPainter::Border::Included);
}

bool OSTBackgroundView::clipsChildren() const
{
    return qobject_cast<OSTRoundedClipEffect *>(graphicsEffect()) != nullptr;
}

void OSTBackgroundView::childEvent(QChildEvent *event)
{
    QWidget::childEvent(event);
    if (event->added() || event->removed())
        updateChildClipping();
}

void OSTBackgroundView::updateChildClipping()
{
    const bool hasChildren = !findChildren<QWidget *>(Qt::FindDirectChildrenOnly).isEmpty();
    const bool needsClipping = hasChildren && (m_boxPainter.hasBorder() || m_boxPainter.isRounded());
    if (needsClipping == clipsChildren())
        return;
    setGraphicsEffect(needsClipping ? new OSTRoundedClipEffect(this) : nullptr);
}

} // namespace ostrel
