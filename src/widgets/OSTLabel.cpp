#include "widgets/OSTLabel.h"

#include "widgets/OSTBackgroundView.h"
#include "widgets/OSTTextLabel.h"

namespace ostrel {

OSTLabel::OSTLabel(const QRect &frame, const OSTLabelDescription &description, QWidget *parent)
    : OSTView(frame, description, Styling::InSubclassConstructor, parent),
      m_internalLabel(new OSTTextLabel(container()))
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    m_internalLabel->setGeometry(container()->rect());
    customize(description);
}

void OSTLabel::customize(const OSTLabelDescription &description)
{
    OSTView::customize(description);
    const OSTTextAttributes attributes(description.textLook());
    m_internalLabel->setAttributes(attributes);
    m_internalLabel->setAlignment(attributes.horizontalAlignment() | Qt::AlignVCenter);
    m_internalLabel->setMinimumScaleFactor(description.minimumScaleFactor());
    setText(description.text());
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
