// Arbitrary bytes as the decrypted body of a launch answer: decoded as the request manager does,
// then handed out by the service manager as a finished launch hands it out.
//
// Checks, besides the sanitizers' own: every receiver gets the response once, in the order of
// the hand-out, unchanged; the session delays are never NaN, equal a JSON number given for them,
// and are the default when the key is absent or holds neither a number nor a string.

#include "core/OSTLogging.h"
#include "launch/OSTServiceManager.h"
#include "network/OSTResponseDecoder.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

using namespace ostrel;

namespace {

using Receiver = OSTServiceManager::LaunchResponseReceiver;

[[noreturn]] void fail(const char *what)
{
    std::fprintf(stderr, "launch response fuzz check failed: %s\n", what);
    std::abort();
}

struct HandOutRecord {
    std::vector<Receiver> order;
    std::vector<OSTServiceManager::LaunchResponse> responses;
};

HandOutRecord &record()
{
    static HandOutRecord handOut;
    return handOut;
}

const std::vector<Receiver> handOutOrder{Receiver::Attribution, Receiver::Events, Receiver::Experience,
                                         Receiver::Facebook, Receiver::User};

void connectRecordingReceivers()
{
    for (const Receiver receiver : handOutOrder) {
        OSTServiceManager::sharedManager().connectLaunchResponseReceiver(
            receiver, [receiver](const OSTServiceManager::LaunchResponse &response) {
                record().order.push_back(receiver);
                record().responses.push_back(response);
            });
    }
}

void checkDelay(const QVariantMap &response, const QString &key, double delay, double defaultDelay)
{
    if (std::isnan(delay))
        fail("a delay is never NaN");
    const QVariant value = response.value(key);
    const bool isNumberOrText = value.typeId() == QMetaType::QString || value.typeId() == QMetaType::Double
        || value.typeId() == QMetaType::LongLong || value.typeId() == QMetaType::Bool;
    if (!isNumberOrText && delay != defaultDelay)
        fail("an absent or non-numeric delay is the default");
    if (value.typeId() == QMetaType::Double && delay != value.toDouble())
        fail("a JSON number is the delay");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication application(*argc, *argv);
    static QTemporaryDir home;
    qputenv("XDG_DATA_HOME", home.path().toLocal8Bit());
    OSTLogging::setLoggingLevel(OSTLoggingLevelNone);
    connectRecordingReceivers();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray body(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const auto decoded = OSTResponseDecoder::dictionaryFromBody(QStringLiteral("launch_v3"), body, std::nullopt);
    record() = {};

    OSTServiceManager &manager = OSTServiceManager::sharedManager();
    const double sessionDelayBefore = manager.sessionDelay();
    const double launchDelayBefore = manager.launchDelay();
    manager.handOutLaunchResponse(decoded.value);

    if (record().order != handOutOrder)
        fail("every receiver once, in the order of the hand-out");
    for (const auto &response : record().responses) {
        if (response != decoded.value)
            fail("each receiver gets the response unchanged");
    }
    if (!decoded.value) {
        if (manager.sessionDelay() != sessionDelayBefore || manager.launchDelay() != launchDelayBefore)
            fail("no response changes nothing");
        return 0;
    }
    checkDelay(*decoded.value, QStringLiteral("session_delay"), manager.sessionDelay(),
               OSTServiceManager::defaultSessionDelay);
    checkDelay(*decoded.value, QStringLiteral("session_delay_cap"), manager.launchDelay(),
               OSTServiceManager::defaultLaunchDelay);
    return 0;
}
