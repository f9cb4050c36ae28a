#include "model/OSTRemoteImage.h"

#include "network/OSTImageManager.h"
#include "screen/OSTImageSource.h"
#include "users/OSTUserManager.h"

#include <ostrel/OSTUser.h>

#include <QPointer>

namespace ostrel {

namespace {

// The current user's properties, read only when the image names one of them.
QVariantMap userPropertiesReferencedBy(const OSTImageSource &source)
{
    if (!source.referencedUserProperty())
        return {};
    return OSTUserManager::sharedManager().currentUser().properties();
}

} // namespace

OSTRemoteImage::OSTRemoteImage(const OSTImageSource &source, QObject *parent)
    : QObject(parent), m_candidates(source.candidateURLs(userPropertiesReferencedBy(source))),
      m_required(source.required)
{
}

void OSTRemoteImage::load()
{
    m_loading = true;
    loadCandidate(0);
}

void OSTRemoteImage::loadCandidate(qsizetype index)
{
    if (index >= m_candidates.size()) {
        finish(QImage());
        return;
    }
    QPointer<OSTRemoteImage> self(this);
    OSTImageManager::sharedManager().loadImageWithURL(m_candidates.at(index), [self, index](const QImage &image) {
        if (!self)
            return;
        if (image.isNull())
            self->loadCandidate(index + 1);
        else
            self->finish(image);
    });
}

void OSTRemoteImage::finish(const QImage &image)
{
    m_loading = false;
    m_arrived = !image.isNull();
    emit finished(image);
}

} // namespace ostrel
