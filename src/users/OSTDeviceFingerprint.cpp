#include "users/OSTDeviceFingerprint.h"

#include "core/OSTUserDefaultsManager.h"
#include "platform/OSTDeviceScreen.h"

#include <QSysInfo>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

QString wholeNumber(double value)
{
    return QString::number(value, 'f', 0);
}

QVariantMap fixedPartFor(const QString &deviceIdentifier, const QString &sdkVersion)
{
    const QRectF bounds = OSTDeviceScreen::bounds();
    const double scale = OSTDeviceScreen::scale();
    return {
        {u"device_id"_s, deviceIdentifier},
        {u"device_model"_s, u"%1 %2 %3"_s.arg(QSysInfo::productType(), QSysInfo::productVersion(),
                                              QSysInfo::currentCpuArchitecture())},
        {u"device_resolution"_s, u"%1x%2"_s.arg(wholeNumber(bounds.width() * scale), wholeNumber(bounds.height() * scale))},
        {u"device_density"_s, wholeNumber(scale)},
        {u"ost_sdk_version"_s, sdkVersion},
        {u"os_name"_s, QSysInfo::productType()},
        {u"os_version"_s, QSysInfo::productVersion()},
    };
}

} // namespace

OSTDeviceFingerprint::OSTDeviceFingerprint(OSTUserDefaultsManager &settings, const QString &sdkVersion)
    : m_fixedPart(fixedPartFor(deviceIdentifier(settings), sdkVersion))
{
}

QString OSTDeviceFingerprint::deviceIdentifier(OSTUserDefaultsManager &settings)
{
    const QVariant stored = settings.objectForKey(deviceIdentifierKey);
    if (stored.typeId() == QMetaType::QString && !QUuid::fromString(stored.toString()).isNull())
        return stored.toString();
    const QString made = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    settings.setObject(made, deviceIdentifierKey);
    return made;
}

QVariantMap OSTDeviceFingerprint::fingerprint(const std::optional<QString> &token, const QString &deviceTimestamp,
                                              const QLocale &locale, const QStringList &uiLanguages) const
{
    QVariantMap fingerprint = m_fixedPart;
    fingerprint.insert(u"carrier"_s, u"NA"_s); // a desktop has no cellular carrier
    if (locale.territory() != QLocale::AnyTerritory)
        fingerprint.insert(u"country"_s, QLocale::territoryToCode(locale.territory()));
    if (!uiLanguages.isEmpty()) {
        // "locale" repeats the preferred language, not the locale's name: the service reads it so.
        fingerprint.insert(u"language"_s, uiLanguages.first());
        fingerprint.insert(u"locale"_s, uiLanguages.first());
    }
    if (token)
        fingerprint.insert(u"token"_s, *token);
    fingerprint.insert(u"device_timestamp"_s, deviceTimestamp);
    return fingerprint;
}

} // namespace ostrel
