#include "render/OSTLabel.h"

#include "core/OSTDictionaryHelpers.h"
#include "render/OSTBackgroundView.h"
#include "render/OSTTextLabel.h"
#include "screen/OSTPropertyValues.h"

using namespace Qt::StringLiterals;

namespace ostrel {

OSTLabel::OSTLabel(const QRect &frame, const QVariantMap &properties, QWidget *parent)
    : OSTView(frame, properties, Styling::InSubclassConstructor, parent),
      m_internalLabel(new OSTTextLabel(container()))
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    m_internalLabel->setGeometry(container()->rect());
    customizeWithProperties(properties);
}

void OSTLabel::customizeWithProperties(const QVariantMap &properties)
{
    OSTView::customizeWithProperties(properties);
    const OSTTextAttributes attributes(properties);
    m_internalLabel->setAttributes(attributes);
    m_internalLabel->setAlignment(attributes.horizontalAlignment() | Qt::AlignVCenter);
    m_internalLabel->setMinimumScaleFactor(ost_stringNumberForKey(properties, u"minimumScaleFactor"_s).value_or(0));
    setText(ost_stringForKey(properties, u"text"_s).value_or(QString()));
}

QString OSTLabel::text() const
{
    return m_internalLabel->text();
}

void OSTLabel::setText(const QString &text)
{
    m_internalLabel->setText(text);
    m_internalLabel->update();
}

Qt::Alignment OSTLabel::textAlignment() const
{
    return m_internalLabel->attributes().horizontalAlignment();
}

void OSTLabel::resizeEvent(QResizeEvent *event)
{
    OSTView::resizeEvent(event);
    m_internalLabel->setGeometry(container()->rect());
}

} // namespace ostrel
