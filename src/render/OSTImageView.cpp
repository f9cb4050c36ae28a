#include "render/OSTImageView.h"

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTLogging.h"
#include "network/OSTImageManager.h"
#include "render/OSTBackgroundView.h"
#include "render/OSTImageDisplay.h"
#include "render/OSTPropertyValues.h"
#include "users/OSTUserManager.h"

#include <ostrel/OSTUser.h>

#include <QPointer>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

// The characters a query may hold unescaped; everything else in an image address is escaped.
const QByteArray queryAllowedCharacters = "!$&'()*+,-./:;=?@_~";

std::optional<QMargins> capInsetsWithProperties(const QVariantMap &properties)
{
    const QVariantList insets = ost_arrayForKey(properties, u"insets"_s).value_or(QVariantList());
    if (insets.size() < 4)
        return std::nullopt;
    int values[4];
    for (int index = 0; index < 4; ++index) {
        bool ok = false;
        const double value = insets.at(index).toDouble(&ok);
        if (!ok || !std::isfinite(value))
            return std::nullopt;
        values[index] = int(std::clamp(value, 0.0, 100'000.0));
    }
    return QMargins(values[1], values[0], values[3], values[2]);
}

// "{name}" in "image" names the user property holding the address.
std::optional<QString> referencedUserProperty(const QString &image)
{
    if (image.size() >= 2 && image.startsWith(u'{') && image.endsWith(u'}'))
        return image.mid(1, image.size() - 2);
    return std::nullopt;
}

// The current user's properties, read only when the image names one of them.
QVariantMap userPropertiesReferencedBy(const QVariantMap &properties)
{
    if (!referencedUserProperty(ost_stringForKey(properties, u"image"_s).value_or(QString())))
        return {};
    return OSTUserManager::sharedManager().currentUser().properties();
}

void appendIfValid(QList<QUrl> &candidates, const QString &address, QUrl::ParsingMode mode)
{
    if (address.isEmpty())
        return;
    const QUrl url(address, mode);
    if (url.isValid())
        candidates.append(url);
}

} // namespace

OSTImageView::OSTImageView(const QRect &frame, const QVariantMap &properties, QWidget *parent)
    : OSTView(frame, properties, Styling::InSubclassConstructor, parent),
      m_display(new OSTImageDisplay(container())),
      m_candidates(candidateURLsWithProperties(properties, userPropertiesReferencedBy(properties))),
      m_imageRequired(ost_boolValue(ost_stringForKey(properties, u"required"_s).value_or(QString())))
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    m_display->setGeometry(container()->rect());
    if (const auto description = ost_stringForKey(properties, u"accessibilityLabel"_s))
        m_display->setAccessibleName(*description);
    m_display->setCapInsets(capInsetsWithProperties(properties));
    m_loading = true;
    loadNextCandidate(0);
    customizeWithProperties(properties);
}

QList<QUrl> OSTImageView::candidateURLsWithProperties(const QVariantMap &properties, const QVariantMap &userProperties)
{
    QList<QUrl> candidates;
    QString image = ost_stringForKey(properties, u"image"_s).value_or(QString());
    if (const auto propertyName = referencedUserProperty(image)) {
        // Only a text can be an address; anything else the user holds under that name is skipped.
        const QVariant address = userProperties.value(*propertyName);
        if (address.typeId() == QMetaType::QString)
            appendIfValid(candidates, address.toString(), QUrl::StrictMode);
        image.clear();
    }
    const QString address = image.isEmpty() ? ost_stringForKey(properties, u"tempImage"_s).value_or(QString()) : image;
    appendIfValid(candidates, QString::fromLatin1(QUrl::toPercentEncoding(address, queryAllowedCharacters)),
                  QUrl::StrictMode);
    appendIfValid(candidates, ost_stringForKey(properties, u"backupImage"_s).value_or(QString()), QUrl::StrictMode);
    return candidates;
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
