#pragma once

#include <ostrel/OSTAttribution.h>
#include <ostrel/OSTError.h>

#include "users/OSTAttributionServices.h"
#include "users/OSTDeviceFingerprint.h"

#include <QMutex>
#include <QStringList>
#include <QUrl>
#include <QVariantMap>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

namespace ostrel {

class OSTUserDefaultsManager;

// The activity type of a web page opened through a link.
inline const QString OSTUserActivityTypeBrowsingWeb = QStringLiteral("NSUserActivityTypeBrowsingWeb");

// How the user came to the application. Keeps the install attribution and the latest attribution
// that the service reports (in the launch response and in the answer to a universal-link click),
// persists them under "installAttribution" and "latestAttribution", and feeds their parameters to
// the experience's dynamic variables. It also builds the device fingerprint, reads the advertising
// identifier through the host's adapter, asks the service for tracking links and handles
// universal links.
//
// Each process starts with the latest attribution read from the install archive: until a link
// reports a return, the latest attribution is the install attribution. When nothing was archived,
// the first launch makes the latest record the install record itself (one shared record), so a
// return then shows in both, as the service expects.
//
// Lives for the whole process. Records and the advertising switch may be read from any thread
// (the event queue reads them); updates and universal links run on the GUI thread. Created on the
// GUI thread (the fingerprint reads the screen there).
class OSTAttributionManager {
public:
    using AttributionCompletion = std::function<void(const std::optional<OSTAttribution> &attribution)>;
    using LinkCompletion = std::function<void(const std::optional<QString> &link)>;

    static inline const QString installArchiveKey = QStringLiteral("installAttribution");
    static inline const QString latestArchiveKey = QStringLiteral("latestAttribution");

    static OSTAttributionManager &sharedManager();

    OSTAttributionManager(OSTUserDefaultsManager &settings, OSTAttributionServices services);
    OSTAttributionManager(const OSTAttributionManager &) = delete;
    OSTAttributionManager &operator=(const OSTAttributionManager &) = delete;

    // Replaces the services (start-up, before the first launch).
    void connectServices(OSTAttributionServices services);

    // --- Records ---------------------------------------------------------------------------------
    void processLaunchResponse(const std::optional<QVariantMap> &response);
    void updateInstallAttributionFromResponse(const std::optional<QVariantMap> &response);
    void updateLatestAttributionFromResponse(const std::optional<QVariantMap> &response);
    std::optional<OSTAttribution> installAttribution() const;
    std::optional<OSTAttribution> latestAttribution() const;
    // Once the launch has finished; on the GUI thread.
    void getInstallAttributionWithCompletion(AttributionCompletion completion) const;
    void getLatestAttributionWithCompletion(AttributionCompletion completion) const;

    // --- Device ------------------------------------------------------------------------------------
    QVariantMap deviceFingerprint() const;
    // The host adapter's identifier as an upper-case UUID; none when the switch is off, no adapter
    // is registered or the user does not allow tracking.
    std::optional<QString> advertisingIdentifierString() const;
    bool shouldUseIDFA() const { return m_shouldUseIDFA; }
    void setShouldUseIDFA(bool shouldUseIDFA) { m_shouldUseIDFA = shouldUseIDFA; }

    // --- Links ---------------------------------------------------------------------------------------
    // Asks the service for a tracking link; the completion runs on the GUI thread with the link,
    // or none on failure.
    void getLinkForTargeting(const QString &targeting, const std::optional<QVariantMap> &parameters,
                             LinkCompletion completion) const;
    // The main bundle's "OstrelLinkHosts" (non-empty strings only).
    static QStringList linkHosts();
    bool canHandleUserActivity(const QString &activityType, const QUrl &webpageURL) const;
    // Reports the link to the service, which may hold back, cancel or start the launch. Returns
    // whether the link is one of the service's (the request is then under way). GUI thread.
    bool continueUserActivity(const QString &activityType, const QUrl &webpageURL);

private:
    using Record = std::shared_ptr<OSTAttribution>;

    void archive(const Record &record, const QString &key);
    void universalLinkDidComplete(const std::optional<QVariantMap> &response, const std::optional<OSTError> &error,
                                  bool sessionLaunchWasCancelled);
    void appendDynamicVariables(const QVariantMap &variables, const QString &prefix) const;
    bool isLaunched() const;

    OSTUserDefaultsManager &m_settings;
    OSTAttributionServices m_services;
    const OSTDeviceFingerprint m_fingerprint;
    std::atomic<bool> m_shouldUseIDFA = true;

    // Guards the two record pointers and the records' contents.
    mutable QMutex m_recordsLock;
    Record m_installAttribution;
    Record m_latestAttribution;
};

} // namespace ostrel
