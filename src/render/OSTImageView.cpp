#include "render/OSTImageView.h"

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTLogging.h"
#include "network/OSTImageManager.h"
#include "render/OSTBackgroundView.h"
#include "render/OSTImageDisplay.h"
#include "users/OSTUserManager.h"

#include <ostrel/OSTUser.h>

#include <QPointer>

using namespace Qt::StringLiterals;

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

OSTImageView::OSTImageView(const QRect &frame, const QVariantMap &properties, QWidget *parent)
    : OSTImageView(frame, properties, OSTImageSource::fromProperties(properties), parent)
{
}

OSTImageView::OSTImageView(const QRect &frame, const QVariantMap &properties, const OSTImageSource &source,
                           QWidget *parent)
    : OSTView(frame, properties, Styling::InSubclassConstructor, parent),
      m_display(new OSTImageDisplay(container())),
      m_candidates(source.candidateURLs(userPropertiesReferencedBy(source))),
      m_imageRequired(source.required)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    m_display->setGeometry(container()->rect());
    if (const auto description = ost_stringForKey(properties, u"accessibilityLabel"_s))
        m_display->setAccessibleName(*description);
    m_display->setCapInsets(source.capInsets);
    m_loading = true;
    loadNextCandidate(0);
    customizeWithProperties(properties);
}

QList<QUrl> OSTImageView::candidateURLsWithProperties(const QVariantMap &properties, const QVariantMap &userProperties)
{
    return OSTImageSource::fromProperties(properties).candidateURLs(userProperties);
}

void OSTImageView::customizeWithProperties(const QVariantMap &properties)
{
    OSTView::customizeWithProperties(properties);
    m_display->setContentMode(UIViewContentModeFromString(ost_stringForKey(properties, u"contentMode"_s)));
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
