#include "widgets/OSTImageView.h"

#include "widgets/OSTBackgroundView.h"
#include "widgets/OSTImageDisplay.h"

namespace ostrel {

OSTImageView::OSTImageView(const QRect &frame, const OSTImageDescription &description, QWidget *parent)
    : OSTView(frame, description, Styling::InSubclassConstructor, parent),
      m_display(new OSTImageDisplay(container())), m_remoteImage(new OSTRemoteImage(description.source(), this))
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    m_display->setGeometry(container()->rect());
    if (const auto &name = description.accessibilityLabel())
        m_display->setAccessibleName(*name);
    m_display->setCapInsets(description.source().capInsets);
    connect(m_remoteImage, &OSTRemoteImage::finished, this, &OSTImageView::finishLoadingWithImage);
    m_remoteImage->load();
    customize(description);
}

void OSTImageView::customize(const OSTImageDescription &description)
{
    OSTView::customize(description);
    m_display->setContentMode(description.source().contentMode);
}

QImage OSTImageView::image() const
{
    return m_display->image();
}

void OSTImageView::setImage(const QImage &image)
{
    m_display->setImage(image);
}

void OSTImageView::finishLoadingWithImage(const QImage &image)
{
    setImage(image);
    if (isImageRequired())
        emit requiredImageFinished();
}

} // namespace ostrel
