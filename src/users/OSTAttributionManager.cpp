#include "users/OSTAttributionManager.h"

#include <ostrel/OSTAdvertisingIdentifierSource.h>
#include <ostrel/OSTRuntime.h>

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTLogging.h"
#include "core/OSTUserDefaultsManager.h"
#include "network/OSTRequestManager.h"
#include "platform/OSTBundle.h"
#include "platform/OSTClock.h"
#include "platform/OSTMainQueue.h"
#include "platform/OSTURLOpener.h"

#include <QMutexLocker>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

constexpr double universalLinkTimeout = 3.0;

// The string fields of a record, by their archive (and response) key.
struct StringField {
    QString key;
    std::optional<QString> OSTAttribution::*field;
};

const std::array<StringField, 8> stringFields{{
    {u"deeplink"_s, &OSTAttribution::deepLink},
    {u"link_id"_s, &OSTAttribution::linkID},
    {u"link_name"_s, &OSTAttribution::linkName},
    {u"source_id"_s, &OSTAttribution::sourceID},
    {u"source_name"_s, &OSTAttribution::sourceName},
    {u"targeting_id"_s, &OSTAttribution::targetingID},
    {u"targeting_key"_s, &OSTAttribution::targetingKey},
    {u"targeting_name"_s, &OSTAttribution::targetingName},
}};

// Applies the service's keys (each with `prefix`): strings replace their fields when present and
// are kept when missing; the two dictionaries are replaced, or emptied when missing.
void apply(OSTAttribution &record, const QVariantMap &response, const QString &prefix)
{
    const QVariant referral = ost_numberForKey(response, prefix + u"referral"_s);
    record.isReferral = referral.isValid() && referral.toDouble() != 0.0;
    for (const StringField &string : stringFields) {
        if (const auto value = ost_stringForKey(response, prefix + string.key))
            record.*string.field = *value;
    }
    record.parameters = ost_dictionaryForKey(response, prefix + u"attribution_params"_s).value_or(QVariantMap());
    record.sender = ost_dictionaryForKey(response, prefix + u"sender"_s).value_or(QVariantMap());
}

QVariantMap archived(const OSTAttribution &record)
{
    QVariantMap archive{{u"referral"_s, record.isReferral},
                        {u"parameters"_s, record.parameters},
                        {u"sender"_s, record.sender}};
    for (const StringField &string : stringFields) {
        if (const std::optional<QString> &value = record.*string.field)
            archive.insert(string.key, *value);
    }
    return archive;
}

// A record read back; a stored value of another type reads as absent.
std::shared_ptr<OSTAttribution> unarchived(const QVariant &stored)
{
    if (stored.typeId() != QMetaType::QVariantMap)
        return nullptr;
    const QVariantMap archive = stored.toMap();
    auto record = std::make_shared<OSTAttribution>();
    record->isReferral = archive.value(u"referral"_s).typeId() == QMetaType::Bool && archive.value(u"referral"_s).toBool();
    for (const StringField &string : stringFields)
        record.get()->*string.field = ost_stringForKey(archive, string.key);
    record->parameters = ost_dictionaryForKey(archive, u"parameters"_s).value_or(QVariantMap());
    record->sender = ost_dictionaryForKey(archive, u"sender"_s).value_or(QVariantMap());
    return record;
}

std::optional<OSTAttribution> copyOf(const std::shared_ptr<OSTAttribution> &record)
{
    return record ? std::optional(*record) : std::nullopt;
}

bool isLinkURL(const QUrl &url)
{
    return url.isValid() && (url.scheme() == u"http"_s || url.scheme() == u"https"_s) && !url.host().isEmpty();
}

} // namespace

OSTAttributionManager &OSTAttributionManager::sharedManager()
{
    static OSTAttributionManager *manager =
        new OSTAttributionManager(OSTUserDefaultsManager::sharedManager(), OSTAttributionServices());
    return *manager;
}

OSTAttributionManager::OSTAttributionManager(OSTUserDefaultsManager &settings, OSTAttributionServices services)
    : m_settings(settings),
      m_services(std::move(services)),
      m_fingerprint(settings, QStringLiteral(OSTREL_VERSION_STRING)),
      m_installAttribution(unarchived(settings.objectForKey(installArchiveKey))),
      // Deliberately the install archive again: each process starts with the latest attribution
      // equal to the install attribution.
      m_latestAttribution(unarchived(settings.objectForKey(installArchiveKey)))
{
}

void OSTAttributionManager::connectServices(OSTAttributionServices services)
{
    m_services = std::move(services);
}

// --- Records ---------------------------------------------------------------------------------------

void OSTAttributionManager::processLaunchResponse(const std::optional<QVariantMap> &response)
{
    updateInstallAttributionFromResponse(response);
    updateLatestAttributionFromResponse(response);
}

void OSTAttributionManager::updateInstallAttributionFromResponse(const std::optional<QVariantMap> &response)
{
    Record record;
    {
        QMutexLocker locker(&m_recordsLock);
        if (!m_installAttribution)
            m_installAttribution = std::make_shared<OSTAttribution>();
        record = m_installAttribution;
        if (response)
            apply(*record, *response, QString());
    }
    archive(record, installArchiveKey);
    const OSTAttribution current = *installAttribution();
    appendDynamicVariables(current.parameters, QString());
    appendDynamicVariables(current.sender, u"sender"_s);
}

void OSTAttributionManager::updateLatestAttributionFromResponse(const std::optional<QVariantMap> &response)
{
    Record record;
    {
        QMutexLocker locker(&m_recordsLock);
        if (!m_latestAttribution)
            m_latestAttribution = m_installAttribution ? m_installAttribution : std::make_shared<OSTAttribution>();
        record = m_latestAttribution;
        if (response && ost_isNumber(response->value(u"return_referral"_s)))
            apply(*record, *response, u"return_"_s);
    }
    archive(record, latestArchiveKey);
    const OSTAttribution current = *latestAttribution();
    appendDynamicVariables(current.parameters, u"return"_s);
    appendDynamicVariables(current.sender, u"return.sender"_s);
}

void OSTAttributionManager::archive(const Record &record, const QString &key)
{
    QVariantMap archive;
    {
        QMutexLocker locker(&m_recordsLock);
        archive = archived(*record);
    }
    m_settings.setObject(archive, key);
}

void OSTAttributionManager::appendDynamicVariables(const QVariantMap &variables, const QString &prefix) const
{
    if (m_services.appendDynamicVariables)
        m_services.appendDynamicVariables(variables, prefix);
}

std::optional<OSTAttribution> OSTAttributionManager::installAttribution() const
{
    QMutexLocker locker(&m_recordsLock);
    return copyOf(m_installAttribution);
}

std::optional<OSTAttribution> OSTAttributionManager::latestAttribution() const
{
    QMutexLocker locker(&m_recordsLock);
    return copyOf(m_latestAttribution);
}

void OSTAttributionManager::getInstallAttributionWithCompletion(AttributionCompletion completion) const
{
    if (!completion || !m_services.executeAfterLaunch)
        return;
    m_services.executeAfterLaunch([this, completion](bool) { completion(installAttribution()); });
}

void OSTAttributionManager::getLatestAttributionWithCompletion(AttributionCompletion completion) const
{
    if (!completion || !m_services.executeAfterLaunch)
        return;
    m_services.executeAfterLaunch([this, completion](bool) { completion(latestAttribution()); });
}

// --- Device ------------------------------------------------------------------------------------------

QVariantMap OSTAttributionManager::deviceFingerprint() const
{
    const std::optional<QString> token = m_services.sdkToken ? m_services.sdkToken() : std::nullopt;
    const double now = OSTClock::current().now() + OSTClock::referenceDateOffset;
    const QString timestamp = m_services.formatTimestamp ? m_services.formatTimestamp(now) : QString();
    return m_fingerprint.fingerprint(token, timestamp);
}

std::optional<QString> OSTAttributionManager::advertisingIdentifierString() const
{
    if (!m_shouldUseIDFA)
        return std::nullopt;
    const auto source = OSTRuntime::create<OSTAdvertisingIdentifierSource>(OSTAdvertisingIdentifierSourceName);
    if (!source || !source->isAdvertisingTrackingEnabled())
        return std::nullopt;
    const QUuid identifier = source->advertisingIdentifier();
    if (identifier.isNull())
        return std::nullopt;
    return identifier.toString(QUuid::WithoutBraces).toUpper();
}

// --- Links ---------------------------------------------------------------------------------------------

void OSTAttributionManager::getLinkForTargeting(const QString &targeting, const std::optional<QVariantMap> &parameters,
                                                LinkCompletion completion) const
{
    QVariantMap request{{u"targeting"_s, targeting.toUpper()}};
    if (parameters)
        request.insert(u"additional_params"_s, *parameters);
    request.insert(u"user_properties"_s,
                   m_services.currentUserProperties ? m_services.currentUserProperties() : QVariantMap());
    request.insert(deviceFingerprint());
    OSTRequestManager::sharedManager().apiRequestWithEndpoint(
        u"tracking_link"_s, request,
        [completion](const std::optional<QVariantMap> &response, const std::optional<OSTError> &error) {
            if (error)
                OSTLogging::logWarning(u"No tracking link: %1"_s, error->message);
            const std::optional<QString> link =
                response ? ost_stringForKey(*response, u"tracking_link"_s) : std::nullopt;
            if (completion)
                OSTMainQueue::async([completion, link] { completion(link); });
        });
}

QStringList OSTAttributionManager::linkHosts()
{
    const QVariant configured = OSTBundle::mainBundle()->objectForInfoDictionaryKey(u"OstrelLinkHosts"_s);
    QStringList hosts;
    for (const QVariant &host : configured.toList()) {
        // An empty name would match every address.
        if (host.typeId() == QMetaType::QString && !host.toString().isEmpty())
            hosts.append(host.toString().toLower());
    }
    return hosts;
}

bool OSTAttributionManager::canHandleUserActivity(const QString &activityType, const QUrl &webpageURL) const
{
    if (activityType != OSTUserActivityTypeBrowsingWeb || !isLinkURL(webpageURL))
        return false;
    const QString host = webpageURL.host().toLower();
    const QStringList hosts = linkHosts();
    // A substring test on purpose: the service's sub-domains are its links too.
    return std::any_of(hosts.cbegin(), hosts.cend(), [&host](const QString &linkHost) { return host.contains(linkHost); });
}

bool OSTAttributionManager::continueUserActivity(const QString &activityType, const QUrl &webpageURL)
{
    if (!canHandleUserActivity(activityType, webpageURL))
        return false;
    const bool sessionLaunchWasCancelled = m_services.cancelSessionLaunch && m_services.cancelSessionLaunch();
    QVariantMap parameters = deviceFingerprint();
    parameters.insert(u"advertiser_id"_s, advertisingIdentifierString().value_or(QString()));
    // The address in its encoded form, as it travels (a space is "%20").
    parameters.insert(u"url"_s, webpageURL.toString(QUrl::FullyEncoded));
    OSTRequestManager::sharedManager().apiRequestWithEndpoint(
        u"universal_link_click"_s, parameters, universalLinkTimeout,
        [this, sessionLaunchWasCancelled](const std::optional<QVariantMap> &response,
                                          const std::optional<OSTError> &error) {
            // The launch sequence belongs to the GUI thread.
            OSTMainQueue::async([this, response, error, sessionLaunchWasCancelled] {
                universalLinkDidComplete(response, error, sessionLaunchWasCancelled);
            });
        });
    return true;
}

bool OSTAttributionManager::isLaunched() const
{
    return m_services.launched && m_services.launched();
}

void OSTAttributionManager::universalLinkDidComplete(const std::optional<QVariantMap> &response,
                                                     const std::optional<OSTError> &error,
                                                     bool sessionLaunchWasCancelled)
{
    const auto call = [](const std::function<void()> &step) {
        if (step)
            step();
    };
    if (!isLaunched() && error && error->is(NSURLErrorDomain, 401)) {
        call(m_services.invalidateLaunch);
        return;
    }
    if (error)
        OSTLogging::logWarning(u"The universal link could not be reported: %1"_s, error->message);
    updateLatestAttributionFromResponse(response);

    const QString deepLinkText = response ? ost_stringForKey(*response, u"return_deeplink"_s).value_or(QString()) : QString();
    const QUrl deepLink(deepLinkText, QUrl::StrictMode);
    if (!deepLinkText.isEmpty() && deepLink.isValid() && !deepLink.scheme().isEmpty()) {
        if (!isLaunched())
            call(m_services.cancelLaunch);
        OSTURLOpener::openURL(deepLink);
        return;
    }
    if (isLaunched()) {
        if (sessionLaunchWasCancelled)
            call(m_services.sessionLaunch);
        return;
    }
    call(m_services.launch);
}

} // namespace ostrel
