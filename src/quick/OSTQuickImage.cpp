#include "quick/OSTQuickImage.h"

#include "model/OSTRemoteImage.h"
#include "quick/OSTQuickAccessibility.h"
#include "screen/OSTImageDescription.h"
#include "screen/OSTImageSource.h"

namespace ostrel {

OSTQuickImage::OSTQuickImage(const QRect &frame, const OSTImageDescription &description, QQuickItem *parent)
    : OSTQuickElement(frame, description, parent), m_remoteImage(new OSTRemoteImage(description.source(), this))
{
    m_imagePainter.setContentMode(description.source().contentMode);
    m_imagePainter.setCapInsets(description.source().capInsets);
    if (const auto &name = description.accessibilityLabel())
        OSTQuickAccessibility::describe(*this, QAccessible::Graphic, *name);
    connect(m_remoteImage, &OSTRemoteImage::finished, this, &OSTQuickImage::finishLoadingWithImage);
    m_remoteImage->load();
}

void OSTQuickImage::setImage(const QImage &image)
{
    m_imagePainter.setImage(image);
    update();
}

bool OSTQuickImage::isImageRequired() const
{
    return m_remoteImage->isRequired();
}

bool OSTQuickImage::isLoadingRequiredImage() const
{
    return isImageRequired() && m_remoteImage->isLoading();
}

const QList<QUrl> &OSTQuickImage::candidateURLs() const
{
    return m_remoteImage->candidateURLs();
}

void OSTQuickImage::finishLoadingWithImage(const QImage &image)
{
    setImage(image);
    if (isImageRequired())
        emit requiredImageFinished();
}

void OSTQuickImage::paintContent(QPainter &painter)
{
    m_imagePainter.paint(painter, size().toSize());
}

} // namespace ostrel
