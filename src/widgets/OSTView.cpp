#include "widgets/OSTView.h"

#include "widgets/OSTBackgroundView.h"
#include "widgets/OSTViewEffect.h"

#include <QResizeEvent>

namespace ostrel {

OSTView::OSTView(const QRect &frame, const OSTElementDescription &description, QWidget *parent)
    : OSTView(frame, description, Styling::InThisConstructor, parent)
{
}

OSTView::OSTView(const QRect &frame, const OSTElementDescription &description, Styling styling,
                 QWidget *parent)
    : QWidget(parent),
      m_container(new OSTBackgroundView(QRect(QPoint(), frame.size()), description.box(), this))
{
    // The view itself paints nothing: its look is the container's.
    setAttribute(Qt::WA_NoSystemBackground);
    setGeometry(frame);
    if (styling == Styling::InThisConstructor)
        customize(description);
}

void OSTView::customize(const OSTElementDescription &description)
{
    m_alpha = description.alpha();
    m_container->setLook(description.box());
    m_objectShadow = description.objectShadow();
    applyEffect();
}

void OSTView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_container->setGeometry(rect());
}

void OSTView::applyEffect()
{
    OSTViewEffect::applyTo(*this, m_container, m_alpha, m_objectShadow);
}

} // namespace ostrel
