#pragma once

#include <QLocale>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <optional>

namespace ostrel {

class OSTUserDefaultsManager;

// The device description that attribution and launch requests carry. The fixed part (device
// identifier, model, screen, system, SDK version) is read once, at construction, which must
// happen on the GUI thread (it reads the primary screen); the changing part (carrier, country,
// languages, token, time) is read at every call, from any thread.
//
// On a desktop: the device identifier is a UUID made once and kept in the settings store; the
// model is the system's product name and version with the CPU architecture; there is no carrier.
class OSTDeviceFingerprint {
public:
    // The settings key of the device identifier.
    static inline const QString deviceIdentifierKey = QStringLiteral("ost_device_id");

    OSTDeviceFingerprint(OSTUserDefaultsManager &settings, const QString &sdkVersion);

    // The fixed part plus the changing part for `locale` and `uiLanguages` (the user's preferred
    // languages, first preferred first).
    QVariantMap fingerprint(const std::optional<QString> &token, const QString &deviceTimestamp,
                            const QLocale &locale = QLocale::system(),
                            const QStringList &uiLanguages = QLocale::system().uiLanguages()) const;
    const QVariantMap &fixedPart() const { return m_fixedPart; }

private:
    static QString deviceIdentifier(OSTUserDefaultsManager &settings);

    const QVariantMap m_fixedPart;
};

} // namespace ostrel
