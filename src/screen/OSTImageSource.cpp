#include "screen/OSTImageSource.h"

#include "core/OSTDictionaryHelpers.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

// The characters a query may hold unescaped; everything else in an image address is escaped.
const QByteArray queryAllowedCharacters = "!$&'()*+,-./:;=?@_~";
constexpr double maximumInset = 100'000;

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
        values[index] = int(std::clamp(value, 0.0, maximumInset));
    }
    return QMargins(values[1], values[0], values[3], values[2]);
}

void appendIfValid(QList<QUrl> &candidates, const QString &address)
{
    if (address.isEmpty())
        return;
    const QUrl url(address, QUrl::StrictMode);
    if (url.isValid())
        candidates.append(url);
}

QString stringOf(const QVariantMap &properties, const QString &key)
{
    return ost_stringForKey(properties, key).value_or(QString());
}

} // namespace

OSTImageSource OSTImageSource::fromProperties(const QVariantMap &properties)
{
    return {stringOf(properties, u"image"_s),
            stringOf(properties, u"tempImage"_s),
            stringOf(properties, u"backupImage"_s),
            ost_boolValue(stringOf(properties, u"required"_s)),
            UIViewContentModeFromString(ost_stringForKey(properties, u"contentMode"_s)),
            capInsetsWithProperties(properties)};
}

std::optional<QString> OSTImageSource::referencedUserProperty() const
{
    if (image.size() >= 2 && image.startsWith(u'{') && image.endsWith(u'}'))
        return image.mid(1, image.size() - 2);
    return std::nullopt;
}

QList<QUrl> OSTImageSource::candidateURLs(const QVariantMap &userProperties) const
{
    QList<QUrl> candidates;
    QString address = image;
    if (const auto propertyName = referencedUserProperty()) {
        // Only a text can be an address; anything else the user holds under that name is skipped.
        const QVariant userAddress = userProperties.value(*propertyName);
        if (userAddress.typeId() == QMetaType::QString)
            appendIfValid(candidates, userAddress.toString());
        address.clear();
    }
    if (address.isEmpty())
        address = temporaryImage;
    appendIfValid(candidates, QString::fromLatin1(QUrl::toPercentEncoding(address, queryAllowedCharacters)));
    appendIfValid(candidates, backupImage);
    return candidates;
}

} // namespace ostrel
