// Arbitrary bytes as an experience document: a launch response ("flow", "splash_screen") and a
// local default ("flow", "splash", "metadata") at once, plus an action object under "action".
//
// Checks, besides the sanitizers' own: every flow delivered as an object is registered under its
// lower-cased key; a flow's screens are among its steps, in step order; the registry built from
// the store at the next start (a fresh manager) holds the same server flows; every screen that
// carries its JSON is registered; every action's
// parameters belong to its type and its success actions nest no deeper than the limit. Image
// preloading runs too: the process's proxy points at a closed loopback port, so no address a
// document names is ever reached.

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTLogging.h"
#include "core/OSTUserDefaultsManager.h"
#include "experience/OSTAction.h"
#include "experience/OSTFlowManager.h"
#include "platform/OSTBundle.h"
#include "platform/OSTDefaultsStore.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QNetworkProxy>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

[[noreturn]] void fail(const char *what, const QString &detail = {})
{
    std::fprintf(stderr, "delivery fuzzer: %s: %s\n", what, detail.left(2000).toLocal8Bit().constData());
    std::abort();
}

struct Environment {
    Environment()
        : store(folder.filePath(u"store.sqlite"_s)), settings(store, u"com.ostrelhq.Ostrel"_s)
    {
        qputenv("XDG_DATA_HOME", folder.filePath(u"data"_s).toLocal8Bit());
        OSTBundle::setMainBundlePath(folder.filePath(u"bundle"_s));
        QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::HttpProxy, u"127.0.0.1"_s, 1));
    }
    QTemporaryDir folder;
    OSTDefaultsStore store;
    OSTUserDefaultsManager settings;
};

Environment *environment = nullptr;

void checkAction(const OSTAction &action)
{
    int depth = 0;
    for (const OSTAction *current = &action; current; current = current->successAction().get()) {
        if (++depth > OSTAction::maximumNestingDepth)
            fail("success actions nest beyond the limit");
        if (current->type() != OSTActionTypeFromString(current->name()))
            fail("type differs from the name's", current->name());
        if (current->flowKey() && (current->type() != OSTActionTypeStartFlow || *current->flowKey() != current->flowKey()->toLower()))
            fail("flow key on the wrong type or not lower-case", current->name());
        if ((current->urlString() || current->shouldCloseSelf()) && current->type() != OSTActionTypeOpenURL)
            fail("address on the wrong type", current->name());
        if (current->successAction() && current->type() != OSTActionTypeLoginFacebook)
            fail("success action on the wrong type", current->name());
    }
}

void checkFlows(const OSTFlowManager &manager, const QVariantMap &flows, OSTDocumentOrigin origin)
{
    for (auto entry = flows.cbegin(); entry != flows.cend(); ++entry) {
        if (entry.value().typeId() != QMetaType::QVariantMap)
            continue;
        const QString key = entry.key().toLower();
        const auto flow = origin == OSTDocumentOrigin::Local ? manager.localFlowForKey(key) : manager.flowForKey(key);
        if (!flow)
            fail("a delivered flow is not registered", entry.key());
        qsizetype step = 0;
        for (const auto &screen : flow->screens()) {
            while (step < flow->screenKeys().size() && flow->screenKeys().at(step) != screen->key().toLower())
                ++step;
            if (step++ >= flow->screenKeys().size())
                fail("a flow holds a screen that is not among its steps, in order", screen->key());
        }
        checkAction(flow->endAction());
    }
}

// Screens that carry their JSON never need the cache: each is registered under its lower-cased key.
void checkScreensWithJSONAreRegistered(const OSTFlowManager &manager, const QVariantMap &screens)
{
    for (auto entry = screens.cbegin(); entry != screens.cend(); ++entry) {
        if (ost_stringForKey(entry.value().toMap(), u"json_data"_s) && entry.value().typeId() == QMetaType::QVariantMap
            && !manager.hasScreenForKey(entry.key().toLower()))
            fail("a screen with its JSON is not registered", entry.key());
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication application(*argc, *argv);
    OSTLogging::setLoggingLevel(OSTLoggingLevelNone);
    static Environment shared;
    environment = &shared;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)));
    if (!document.isObject())
        return 0;
    const QVariantMap delivery = document.toVariant().toMap();

    checkAction(OSTAction(ost_dictionaryForKey(delivery, u"action"_s).value_or(QVariantMap())));

    bool delivered = false;
    {
        OSTFlowManager manager(environment->settings);
        delivered = manager.loadLaunchResponse(delivery);
        const bool local = manager.loadLocalDefault(delivery);
        const QVariantMap flows = ost_dictionaryForKey(delivery, u"flow"_s).value_or(QVariantMap());
        if (delivered)
            checkFlows(manager, flows, OSTDocumentOrigin::Server);
        if (local)
            checkFlows(manager, flows, OSTDocumentOrigin::Local);
        if (delivered)
            checkScreensWithJSONAreRegistered(manager, ost_dictionaryForKey(delivery, u"splash_screen"_s).value_or(QVariantMap()));
        manager.synchronize();
    }
    const QVariant storedFlows = environment->settings.objectForKey(u"flows"_s);
    if (delivered && storedFlows == delivery.value(u"flow"_s)) {
        // The next start registers the stored delivery (one the store accepted: no JSON nulls).
        const OSTFlowManager nextStart(environment->settings);
        checkFlows(nextStart, ost_dictionaryForKey(delivery, u"flow"_s).value_or(QVariantMap()), OSTDocumentOrigin::Server);
    }
    QCoreApplication::processEvents();
    return 0;
}
