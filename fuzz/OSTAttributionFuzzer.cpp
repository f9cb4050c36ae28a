// Arbitrary bytes as the decrypted answer of a launch or of a universal-link click, decoded as the
// request manager does and given to the attribution manager and the experience manager, whose
// dynamic variables it feeds; the bytes as text then go through the variable substitution.
//
// Checks, besides the sanitizers' own: a string field changes only to a string the answer holds
// under its key; the two dictionaries are what the answer holds or empty; the latest record
// changes only with a numeric "return_referral"; the install parameters that are strings, and
// only they, become variables; substitution without variables changes nothing.

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTLogging.h"
#include "core/OSTUserDefaultsManager.h"
#include "experience/OSTExperienceManager.h"
#include "experience/OSTFlowManager.h"
#include "network/OSTResponseDecoder.h"
#include "users/OSTAttributionManager.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

using namespace ostrel;

namespace {

[[noreturn]] void fail(const char *what)
{
    std::fprintf(stderr, "attribution fuzz check failed: %s\n", what);
    std::abort();
}

void checkString(const std::optional<QString> &before, const std::optional<QString> &after,
                 const QVariantMap &answer, const QString &key)
{
    const std::optional<QString> given = ost_stringForKey(answer, key);
    if (after != (given ? given : before))
        fail("a string field is replaced by a string given for it and kept otherwise");
}

void checkDictionary(const QVariantMap &after, const QVariantMap &answer, const QString &key)
{
    if (after != ost_dictionaryForKey(answer, key).value_or(QVariantMap()))
        fail("a dictionary is what the answer holds, or empty");
}

void checkRecord(const OSTAttribution &before, const OSTAttribution &after, const QVariantMap &answer,
                 const QString &prefix)
{
    checkString(before.linkID, after.linkID, answer, prefix + QStringLiteral("link_id"));
    checkString(before.linkName, after.linkName, answer, prefix + QStringLiteral("link_name"));
    checkString(before.deepLink, after.deepLink, answer, prefix + QStringLiteral("deeplink"));
    checkString(before.targetingKey, after.targetingKey, answer, prefix + QStringLiteral("targeting_key"));
    checkDictionary(after.parameters, answer, prefix + QStringLiteral("attribution_params"));
    checkDictionary(after.sender, answer, prefix + QStringLiteral("sender"));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication application(*argc, *argv);
    static QTemporaryDir home;
    qputenv("XDG_DATA_HOME", home.path().toLocal8Bit());
    OSTLogging::setLoggingLevel(OSTLoggingLevelNone);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray body(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const auto decoded = OSTResponseDecoder::dictionaryFromBody(QStringLiteral("launch_v3"), body, std::nullopt);
    const QVariantMap answer = decoded.value.value_or(QVariantMap());

    static OSTFlowManager flows(OSTUserDefaultsManager::sharedManager());
    OSTExperienceManager experience(flows);
    OSTAttributionManager attribution(
        OSTUserDefaultsManager::sharedManager(),
        {.appendDynamicVariables = [&experience](const QVariantMap &variables, const QString &prefix) {
            if (prefix.isEmpty())
                experience.appendDynamicVariables(variables);
            else
                experience.appendDynamicVariables(variables, prefix);
        }});
    if (experience.replaceDynamicVariables(QString::fromUtf8(body)) != QString::fromUtf8(body))
        fail("no variables, no change");

    // Both records exist from here on (the settings keep them between inputs).
    attribution.updateInstallAttributionFromResponse(std::nullopt);
    attribution.updateLatestAttributionFromResponse(std::nullopt);
    const OSTAttribution installBefore = *attribution.installAttribution();
    attribution.updateInstallAttributionFromResponse(decoded.value);
    if (decoded.value)
        checkRecord(installBefore, *attribution.installAttribution(), answer, QString());
    else if (!(*attribution.installAttribution() == installBefore))
        fail("no answer changes nothing");

    const OSTAttribution latestBefore = *attribution.latestAttribution();
    attribution.updateLatestAttributionFromResponse(decoded.value);
    const OSTAttribution latestAfter = *attribution.latestAttribution();
    if (ost_isNumber(answer.value(QStringLiteral("return_referral"))))
        checkRecord(latestBefore, latestAfter, answer, QStringLiteral("return_"));
    else if (!(latestAfter == latestBefore))
        fail("without a numeric return_referral the latest record stays");

    const QVariantMap parameters = attribution.installAttribution()->parameters;
    for (auto parameter = parameters.cbegin(); parameter != parameters.cend(); ++parameter) {
        // Names with a point may also come from the sender or the latest record's prefixes.
        if (parameter.key().contains(QLatin1Char('.')))
            continue;
        const bool isString = parameter.value().typeId() == QMetaType::QString;
        if (experience.dynamicVariables().contains(parameter.key()) != isString)
            fail("string parameters, and only they, become variables");
    }
    experience.processLaunchResponse(decoded.value);
    experience.replaceDynamicVariables(QString::fromUtf8(body));
    return 0;
}
