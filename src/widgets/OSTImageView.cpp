#include "widgets/OSTImageView.h"

#include "core/OSTLogging.h"
#include "network/OSTImageManager.h"
#include "users/OSTUserManager.h"
#include "widgets/OSTBackgroundView.h"
#include "widgets/OSTImageDisplay.h"

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

OSTImageView::OSTImageView(const QRect &frame, const OSTImageDescription &description, QWidget *parent)
    : OSTView(frame, description, Styling::InSubclassConstructor, parent),
      m_display(new OSTImageDisplay(container())),
      m_candidates(description.source().candidateURLs(userPropertiesReferencedBy(description.source()))),
      m_imageRequired(description.source().required)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    m_display->setGeometry(container()->rect());
    if (const auto &name = description.accessibilityLabel())
        m_display->setAccessibleName(*name);
    m_display->setCapInsets(description.source().capInsets);
    m_loading = true;
    loadNextCandidate(0);
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

void OSTImageView::loadNextCandidate(qsizetype index)
{
    if (index >= m_candidates.size()) {
        finishLoadingWithImage(QImage());
        return;
    }
    QPointer<OSTImageView> self(this);
    OSTImageManager::sharedManager().loadImageWithURL(m_candidates.at(index), [self, index](const QImage &image) {
        if (!self)
            return;
        if (image.isNull())
            self->loadNextCandidate(index + 1);
        else
            self->finishLoadingWithImage(image);
    });
}

void OSTImageView::finishLoadingWithImage(const QImage &image)
{
    m_loading = false;
    setImage(image);
    if (m_imageRequired)
        emit requiredImageFinished();
}

} // namespace ostrel
