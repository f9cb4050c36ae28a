#include "render/OSTView.h"

#include "core/OSTDictionaryHelpers.h"
#include "render/OSTBackgroundView.h"
#include "render/OSTPropertyValues.h"
#include "render/OSTViewEffect.h"

#include <QResizeEvent>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

std::optional<OSTShadow> objectShadowFrom(const QVariantMap &properties)
{
    const auto entries = ost_arrayForKey(properties, u"objectShadow"_s);
    if (!entries)
        return std::nullopt;
    auto shadow = ost_shadowFromArray(*entries);
    if (!shadow || shadow->blurRadius <= 0)
        return std::nullopt;
    return shadow;
}

} // namespace

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

void OSTView::customizeWithProperties(const QVariantMap &properties)
{
    m_alpha = std::clamp(ost_stringNumberForKey(properties, u"alpha"_s).value_or(1.0), 0.0, 1.0);
    m_container->customizeWithProperties(properties);
    m_objectShadow = objectShadowFrom(properties);
    applyEffect();
}

void OSTView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_container->setGeometry(rect());
}

OSTViewEffect *OSTView::effect() const
{
    return qobject_cast<OSTViewEffect *>(graphicsEffect());
}

void OSTView::applyEffect()
{
    const bool needsEffect = m_alpha < 1 || m_objectShadow;
    if (!needsEffect) {
        if (effect())
            setGraphicsEffect(nullptr);
        return;
    }
    OSTViewEffect *viewEffect = effect();
    if (!viewEffect) {
        viewEffect = new OSTViewEffect(m_container);
        setGraphicsEffect(viewEffect); // the view owns it from here on
    }
    viewEffect->setOpacity(m_alpha);
    viewEffect->setShadow(m_objectShadow);
}

} // namespace ostrel
