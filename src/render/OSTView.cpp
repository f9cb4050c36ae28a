#include "render/OSTView.h"

#include "render/OSTBackgroundView.h"
#include "render/OSTViewEffect.h"
#include "screen/OSTPropertyValues.h"

#include <QResizeEvent>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ostrel {

OSTView::OSTView(const QRect &frame, const QVariantMap &properties, QWidget *parent)
    : OSTView(frame, properties, Styling::InThisConstructor, parent)
{
}

OSTView::OSTView(const QRect &frame, const QVariantMap &properties, Styling styling,
                 QWidget *parent)
    : QWidget(parent),
      m_container(new OSTBackgroundView(QRect(QPoint(), frame.size()), properties, this))
{
    // The view itself paints nothing: its look is the container's.
    setAttribute(Qt::WA_NoSystemBackground);
    setGeometry(frame);
    if (styling == Styling::InThisConstructor)
        OSTView::customizeWithProperties(properties);
}

OSTView::OSTView(const QRect &frame, const OSTElementDescription &description, QWidget *parent)
    : OSTView(frame, description, Styling::InThisConstructor, parent)
{
}

OSTView::OSTView(const QRect &frame, const OSTElementDescription &description, Styling styling, QWidget *parent)
    : OSTView(frame, QVariantMap(), Styling::InSubclassConstructor, parent)
{
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

void OSTView::customizeWithProperties(const QVariantMap &properties)
{
    m_alpha = std::clamp(ost_stringNumberForKey(properties, u"alpha"_s).value_or(1.0), 0.0, 1.0);
    m_container->customizeWithProperties(properties);
    m_objectShadow = ost_objectShadowWithProperties(properties);
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
