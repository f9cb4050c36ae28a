#include "events/OSTTrackingParameters.h"

#include "events/OSTEventSources.h"
#include "network/OSTReachability.h"
#include "platform/OSTBundle.h"

#include <QSysInfo>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

// The first Info.json string of `keys` that is present and not empty.
QVariant firstInfoString(const OSTBundle &bundle, std::initializer_list<QString> keys)
{
    for (const QString &key : keys) {
        const QVariant value = bundle.objectForInfoDictionaryKey(key);
        if (value.typeId() == QMetaType::QString && !value.toString().isEmpty())
            return value;
    }
    return {};
}

void insertIfPresent(QVariantMap &parameters, const QString &key, const QVariant &value)
{
    if (value.isValid() && !value.isNull())
        parameters.insert(key, value);
}

void insertIfPresent(QVariantMap &parameters, const QString &key, const std::optional<QString> &value)
{
    if (value)
        parameters.insert(key, *value);
}

template <typename Value>
std::optional<Value> valueOf(const std::function<std::optional<Value>()> &source)
{
    return source ? source() : std::nullopt;
}

void insertAttribution(QVariantMap &parameters, const QString &prefix,
                       const std::optional<OSTEventSources::Attribution> &attribution)
{
    if (!attribution)
        return;
    const auto insertPresent = [&](const QString &suffix, const std::optional<QString> &value) {
        if (value)
            parameters.insert(prefix + suffix, *value);
    };
    insertPresent(u"_source"_s, attribution->sourceName);
    insertPresent(u"_targeting_id"_s, attribution->targetingID);
    insertPresent(u"_targeting"_s, attribution->targetingName);
}

void insertReachability(QVariantMap &parameters)
{
    const OSTReachabilityStatus status = OSTReachability::status();
    parameters.insert(u"wifi"_s, status == OSTReachabilityStatusReachableViaWiFi);
    if (status == OSTReachabilityStatusUnknown)
        parameters.insert(u"has_internet"_s, u"unknown"_s);
    else
        parameters.insert(u"has_internet"_s, status == OSTReachabilityStatusReachableViaWWAN
                                                 || status == OSTReachabilityStatusReachableViaWiFi);
}

} // namespace

const QVariantMap &OSTTrackingParameters::processParameters()
{
    static const QVariantMap parameters = [] {
        QVariantMap values{{u"system"_s, u"%1,%2"_s.arg(QSysInfo::productType(), QSysInfo::productVersion())},
                           {u"device_name"_s, QSysInfo::machineHostName()}};
        const std::shared_ptr<const OSTBundle> bundle = OSTBundle::mainBundle();
        insertIfPresent(values, u"app_name"_s, firstInfoString(*bundle, {u"CFBundleDisplayName"_s, u"CFBundleName"_s}));
        insertIfPresent(values, u"app_version"_s,
                        firstInfoString(*bundle, {u"CFBundleShortVersionString"_s, u"CFBundleVersion"_s}));
        insertIfPresent(values, u"app_build"_s, firstInfoString(*bundle, {u"CFBundleVersion"_s}));
        insertIfPresent(values, u"app"_s, firstInfoString(*bundle, {u"CFBundleIdentifier"_s}));
        return values;
    }();
    return parameters;
}

QVariantMap OSTTrackingParameters::current(QA qa)
{
    const OSTEventSources::Sources sources = OSTEventSources::current();
    QVariantMap parameters = processParameters();
    if (qa == QA::Yes)
        parameters.insert(u"is_qa"_s, true);
    insertIfPresent(parameters, u"user_id"_s, valueOf(sources.userID));
    insertIfPresent(parameters, u"name"_s, valueOf(sources.userName));
    if (sources.deviceFingerprint)
        parameters.insert(sources.deviceFingerprint());
    insertIfPresent(parameters, u"advertiser_id"_s, valueOf(sources.advertiserID));
    insertAttribution(parameters, u"ost_install"_s, valueOf(sources.installAttribution));
    insertAttribution(parameters, u"ost_return"_s, valueOf(sources.latestAttribution));
    insertReachability(parameters);
    return parameters;
}

} // namespace ostrel
