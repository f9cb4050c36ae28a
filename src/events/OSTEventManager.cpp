#include "events/OSTEventManager.h"

#include <ostrel/OSTConstants.h>
#include <ostrel/OSTEventEmitter.h>

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTJsonWriter.h"
#include "core/OSTLogging.h"
#include "core/OSTUserDefaultsManager.h"
#include "events/OSTEventRequestBuilder.h"
#include "events/OSTEventSources.h"
#include "events/OSTInternalEvent.h"
#include "events/OSTStatisticalEvent.h"
#include "events/OSTTrackingParameters.h"
#include "network/OSTRequestManager.h"
#include "platform/OSTApplication.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

std::optional<QString> sdkToken()
{
    const OSTEventSources::Sources sources = OSTEventSources::current();
    return sources.sdkToken ? sources.sdkToken() : std::nullopt;
}

std::vector<qint64> storedIdsOf(const std::vector<OSTEventJournal::Record> &records)
{
    std::vector<qint64> ids;
    ids.reserve(records.size());
    for (const OSTEventJournal::Record &record : records) {
        if (record.id > 0)
            ids.push_back(record.id);
    }
    return ids;
}

// The host's parameters without the values JSON cannot carry; one warning names them.
QVariantMap acceptedHostParameters(const QString &eventName, const QVariantMap &parameters)
{
    QVariantMap accepted;
    QStringList refused;
    for (auto entry = parameters.constBegin(); entry != parameters.constEnd(); ++entry) {
        if (OSTJsonWriter::isJSONValue(entry.value()))
            accepted.insert(entry.key(), entry.value());
        else
            refused.append(entry.key());
    }
    if (!refused.isEmpty())
        OSTLogging::logWarning(u"The parameters %1 of event \"%2\" are not property-list values; the event is sent "
                               u"without them."_s,
                               refused.join(u", "_s), eventName);
    return accepted;
}

// The service refuses such a request for what it carries; sending it again unchanged cannot help.
bool isRefusalStatus(int status)
{
    return status >= 400 && status < 500 && status != 401 && status != 408 && status != 429;
}

// "name" (id) of a stored event, for log lines.
QString describeStoredEvent(const QByteArray &json)
{
    const QJsonObject event = QJsonDocument::fromJson(json).object();
    return u"\"%1\" (%2)"_s.arg(event.value(u"event_type"_s).toString(), event.value(u"ost_event_id"_s).toString());
}

} // namespace

OSTEventManager &OSTEventManager::sharedManager()
{
    static OSTEventManager *manager = new OSTEventManager();
    return *manager;
}

OSTEventManager::OSTEventManager()
    : m_serialQueue(u"com.ostrelhq.eventManagerQueue"_s), m_journal(OSTEventJournal::standardJournalPath())
{
    const QVariant enabled = OSTUserDefaultsManager::sharedManager().objectForKey(eventsEnabledKey);
    m_enabled = !enabled.isValid() || enabled.toBool();
    // Before any intake can happen, so that the stored events keep their place at the front.
    restoreStoredEvents();
    OSTNotificationCenter &center = OSTNotificationCenter::defaultCenter();
    m_backgroundObserver = center.addObserver(OSTApplicationDidEnterBackgroundNotification,
                                              [this](const OSTNotification &) { didEnterBackground(); });
    m_foregroundObserver = center.addObserver(OSTApplicationWillEnterForegroundNotification,
                                              [this](const OSTNotification &) { willEnterForeground(); });
}

// --- Intake ---------------------------------------------------------------------------------------

void OSTEventManager::sendEventWithName(const QString &name, const QVariantMap &parameters)
{
    if (OSTJsonWriter::isNestedTooDeep(parameters)) {
        OSTLogging::logWarning(u"Event \"%1\" nests its parameters deeper than %2 levels, more than the service "
                               u"reads; it was not recorded."_s,
                               name, OSTJsonWriter::maximumDepth);
        return;
    }
    sendEvent(std::make_shared<const OSTEvent>(name, acceptedHostParameters(name, parameters)));
}

void OSTEventManager::sendEvent(const std::shared_ptr<const OSTEvent> &event)
{
    if (!event)
        return;
    if (!m_enabled) {
        if (const auto *internal = dynamic_cast<const OSTInternalEvent *>(event.get()))
            announce(*internal);
        return;
    }
    if (std::optional<Intake> intake = prepareIntake(event))
        commitIntake(*std::move(intake));
}

std::optional<OSTEventManager::Intake> OSTEventManager::prepareIntake(const std::shared_ptr<const OSTEvent> &event) const
{
    QVariantMap parameters = event->parameters();
    // Tracking values win on equal keys.
    parameters.insert(OSTTrackingParameters::current(isQA() ? OSTTrackingParameters::QA::Yes
                                                            : OSTTrackingParameters::QA::No));
    std::optional<QByteArray> json = OSTJsonWriter::serialized(parameters);
    if (!json) {
        OSTLogging::logError(u"Event \"%1\" holds values JSON cannot carry; it was not recorded."_s, event->name());
        return std::nullopt;
    }
    if (!OSTEventRequestBuilder::fitsOneRequest(*json)) {
        OSTLogging::logWarning(u"Event \"%1\" is %2 bytes of JSON, more than one request carries (%3 bytes); it was "
                               u"not recorded."_s,
                               event->name(), json->size(), OSTEventRequestBuilder::maximumBytesPerRequest);
        return std::nullopt;
    }
    const bool internal = dynamic_cast<const OSTInternalEvent *>(event.get()) != nullptr;
    return Intake{{0, internal ? OSTEventJournal::Kind::Internal : OSTEventJournal::Kind::Queued, *std::move(json)},
                  event};
}

void OSTEventManager::commitIntake(Intake intake)
{
    std::unique_lock lock(m_inboxMutex);
    m_inbox.push_back(std::move(intake));
    const quint64 ticket = ++m_enqueuedCount;
    while (m_committedCount < ticket) {
        if (m_inboxWriting)
            m_inboxCommitted.wait(lock);
        else
            writeInboxBatch(lock);
    }
}

void OSTEventManager::writeInboxBatch(std::unique_lock<std::mutex> &lock)
{
    m_inboxWriting = true;
    std::vector<Intake> batch = std::exchange(m_inbox, {});
    const quint64 lastTicket = m_enqueuedCount;
    lock.unlock();

    std::vector<Record> records;
    records.reserve(batch.size());
    for (const Intake &intake : batch)
        records.push_back(intake.record);
    if (!m_journal.append(records))
        OSTLogging::logError(u"%1 events could not be stored and are kept in memory only."_s, records.size());
    for (size_t index = 0; index < batch.size(); ++index)
        batch[index].record.id = records[index].id;

    lock.lock();
    // Posted under the lock, so batches reach the queue in the order they were stored.
    m_serialQueue.async([this, batch = std::move(batch)] { takeIn(batch); });
    m_committedCount = lastTicket;
    m_inboxWriting = false;
    m_inboxCommitted.notify_all();
}

void OSTEventManager::announce(const OSTInternalEvent &event)
{
    const QVariantMap userInfo = event.userInfo();
    OSTNotificationCenter::defaultCenter().post(
        OSTNotification{OSTEventFiredNotification, &userInfo, {}, userInfo});
    emit OSTEventEmitter::sharedEmitter()->eventFired(event.name(), event.parameters(), event.type());
}

// --- On the serial queue --------------------------------------------------------------------------

void OSTEventManager::takeIn(const std::vector<Intake> &batch)
{
    reportJournalProblems();
    bool queuedAny = false;
    for (const Intake &intake : batch) {
        if (!m_enabled) {
            m_journal.remove(storedIdsOf({intake.record}));
            continue;
        }
        if (const auto *internal = dynamic_cast<const OSTInternalEvent *>(intake.event.get())) {
            announce(*internal);
            OSTLogging::logInfo(u"Sending event: %1"_s, intake.event->name());
            if (!m_sessionStartConfirmed && intake.event->name() == OSTSessionStartedEvent) {
                m_sessionStartRecord = intake.record.id;
                m_sessionStartSentAt = OSTClock::current().monotonicNow();
            }
            sendRecords({intake.record}, OSTEventRequestBuilder::singleParameters(intake.record.json, sdkToken()),
                        false);
        } else {
            OSTLogging::logInfo(u"Queueing event: %1"_s, intake.event->name());
            m_pending.push_back(intake.record);
            queuedAny = true;
        }
    }
    enforceStorageLimit();
    if (queuedAny)
        startFlushTimer();
}

void OSTEventManager::enforceStorageLimit()
{
    const size_t stored = waitingEventCount() + m_inFlightCount;
    if (stored <= static_cast<size_t>(maximumStoredEvents))
        return;
    size_t excess = stored - maximumStoredEvents;
    std::vector<Record> dropped;
    for (auto record = m_pending.begin(); record != m_pending.end() && excess > 0;) {
        if (record->kind == OSTEventJournal::Kind::Internal) {
            ++record;
            continue;
        }
        dropped.push_back(std::move(*record));
        record = m_pending.erase(record);
        --excess;
    }
    m_journal.remove(storedIdsOf(dropped));
    m_droppedSinceReport += dropped.size();
}

void OSTEventManager::reportDroppedEvents()
{
    if (m_droppedSinceReport == 0)
        return;
    OSTLogging::logWarning(u"The event queue holds at most %1 events; %2 of the oldest were dropped."_s,
                           maximumStoredEvents, m_droppedSinceReport);
    m_droppedSinceReport = 0;
}

void OSTEventManager::flush(FlushKind kind)
{
    m_serialQueue.async([this, kind] { flushOnQueue(kind); });
}

void OSTEventManager::flushOnQueue(FlushKind kind)
{
    // Reported here, once per flush, rather than once per dropped event.
    reportDroppedEvents();
    retryHeldBackEvents();
    if (m_pending.empty() && m_refusedParts.empty()) {
        stopFlushTimer();
        return;
    }
    const bool waitingForRetry = OSTClock::current().monotonicNow() < m_retryAt;
    if (m_batchInFlight || (kind == FlushKind::Scheduled && waitingForRetry))
        return;
    OSTLogging::logInfo(u"Flushing %1 events."_s, waitingEventCount());
    sendNextBatch();
}

void OSTEventManager::sendNextBatch()
{
    if (!m_enabled)
        return;
    if (!m_refusedParts.empty()) {
        std::deque<Record> part = std::move(m_refusedParts.front());
        m_refusedParts.pop_front();
        QByteArray parameters = OSTEventRequestBuilder::batchParameters(part, part.size(), sdkToken());
        sendRecords({std::make_move_iterator(part.begin()), std::make_move_iterator(part.end())},
                    std::move(parameters), true);
        return;
    }
    if (m_pending.empty())
        return;
    const size_t count = OSTEventRequestBuilder::batchSize(m_pending);
    QByteArray parameters = OSTEventRequestBuilder::batchParameters(m_pending, count, sdkToken());
    std::vector<Record> records(std::make_move_iterator(m_pending.begin()),
                                std::make_move_iterator(m_pending.begin() + static_cast<qsizetype>(count)));
    m_pending.erase(m_pending.begin(), m_pending.begin() + static_cast<qsizetype>(count));
    sendRecords(std::move(records), std::move(parameters), true);
}

void OSTEventManager::sendRecords(std::vector<Record> records, QByteArray parameters, bool isBatch)
{
    m_inFlightCount += records.size();
    m_batchInFlight = m_batchInFlight || isBatch;
    auto carried = std::make_shared<const std::vector<Record>>(std::move(records));
    OSTRequestManager::sharedManager().apiStringRequestWithSerializedParameters(
        u"event"_s, parameters,
        [this, carried, isBatch](const std::optional<QString> &answer, const std::optional<OSTError> &error) {
            const Delivery delivery = deliveryOf(answer, error);
            m_serialQueue.async([this, carried, isBatch, delivery] {
                requestDidComplete(*carried, isBatch, delivery);
            });
        });
}

OSTEventManager::Delivery OSTEventManager::deliveryOf(const std::optional<QString> &answer,
                                                      const std::optional<OSTError> &error)
{
    if (!error && answer && *answer == u"OK"_s)
        return {Delivery::Result::Delivered};
    if (error && error->domain == NSURLErrorDomain && isRefusalStatus(error->code))
        return {Delivery::Result::Refused, error->code};
    return {Delivery::Result::Failed};
}

void OSTEventManager::requestDidComplete(const std::vector<Record> &records, bool isBatch, Delivery delivery)
{
    m_inFlightCount -= records.size();
    if (isBatch)
        m_batchInFlight = false;
    if (!m_enabled) {
        m_journal.remove(storedIdsOf(records));
        return;
    }
    if (delivery.result == Delivery::Result::Refused) {
        setAsideRefused(records, delivery.status);
        if (isBatch)
            sendNextBatch();
        return;
    }
    if (delivery.result == Delivery::Result::Failed) {
        requeue(records);
        scheduleRetry();
        return;
    }
    m_journal.remove(storedIdsOf(records));
    reportJournalProblems();
    m_retryPolicy.reset();
    m_retryAt = 0.0;
    confirmSessionStartIfCarried(records);
    if (isBatch)
        sendNextBatch();
}

void OSTEventManager::requeue(const std::vector<Record> &records)
{
    // Back in intake order, ahead of newer events; flattened into the next batches.
    m_pending.insert(m_pending.end(), records.begin(), records.end());
    std::stable_sort(m_pending.begin(), m_pending.end(),
                     [](const Record &left, const Record &right) { return left.id < right.id; });
    enforceStorageLimit();
}

void OSTEventManager::setAsideRefused(const std::vector<Record> &records, int status)
{
    if (records.size() > 1) {
        OSTLogging::logInfo(u"The service refused %1 events with HTTP status %2; sending them in two halves."_s,
                            records.size(), status);
        const auto middle = records.begin() + static_cast<qsizetype>(records.size() / 2);
        m_refusedParts.emplace_front(middle, records.end());
        m_refusedParts.emplace_front(records.begin(), middle);
        return;
    }
    Record record = records.front();
    if (++record.refusals >= maximumRefusals) {
        dropRefused(record, status);
        return;
    }
    OSTLogging::logWarning(u"The service refused event %1 with HTTP status %2; it goes again at the next flush."_s,
                           describeStoredEvent(record.json), status);
    m_heldBack.push_back(std::move(record));
    startFlushTimer();
}

void OSTEventManager::dropRefused(const Record &record, int status)
{
    m_journal.remove(storedIdsOf({record}));
    const QString eventName = QJsonDocument::fromJson(record.json).object().value(u"event_type"_s).toString();
    OSTLogging::logError(u"The service refused event %1 %2 times (HTTP status %3); it was dropped."_s,
                         describeStoredEvent(record.json), record.refusals, status);
    // A refused statistic is not reported again, or a service refusing everything would get an
    // endless chain of them.
    if (eventName != OSTStatisticalEvent::eventName)
        sendEvent(std::make_shared<const OSTStatisticalEvent>(OSTStatisticalEvent::refusedEventEvent(eventName, status)));
}

void OSTEventManager::retryHeldBackEvents()
{
    for (Record &record : m_heldBack)
        m_refusedParts.push_back({std::move(record)});
    m_heldBack.clear();
}

size_t OSTEventManager::waitingEventCount() const
{
    size_t count = m_pending.size() + m_heldBack.size();
    for (const std::deque<Record> &part : m_refusedParts)
        count += part.size();
    return count;
}

void OSTEventManager::scheduleRetry()
{
    const double delay = m_retryPolicy.delayAfterFailure();
    m_retryAt = OSTClock::current().monotonicNow() + delay;
    OSTLogging::logInfo(u"Sending events failed; retrying in %1 seconds."_s, qRound(delay));
    OSTClock &clock = OSTClock::current();
    clock.cancel(m_retryTimer);
    m_retryTimer = clock.schedule(delay, m_serialQueue.context(), [this] {
        m_retryTimer = 0;
        flush(FlushKind::Scheduled);
    });
}

void OSTEventManager::confirmSessionStartIfCarried(const std::vector<Record> &records)
{
    if (m_sessionStartConfirmed || m_sessionStartRecord == 0)
        return;
    const bool carried = std::any_of(records.begin(), records.end(),
                                     [this](const Record &record) { return record.id == m_sessionStartRecord; });
    if (!carried)
        return;
    m_sessionStartConfirmed = true;
    const double timing = OSTClock::current().monotonicNow() - m_sessionStartSentAt;
    m_sessionStartRecord = 0;
    sendEvent(std::make_shared<const OSTStatisticalEvent>(OSTStatisticalEvent::sessionStartEvent(timing)));
}

void OSTEventManager::startFlushTimer()
{
    if (m_flushTimer != 0 || m_inBackground)
        return;
    m_flushTimer = OSTClock::current().schedule(flushInterval, m_serialQueue.context(), [this] { flushTimerFired(); });
}

void OSTEventManager::stopFlushTimer()
{
    OSTClock::current().cancel(m_flushTimer);
    m_flushTimer = 0;
}

void OSTEventManager::flushTimerFired()
{
    // Repeats until a flush finds nothing to send.
    m_flushTimer = 0;
    startFlushTimer();
    flush(FlushKind::Scheduled);
}

void OSTEventManager::restoreStoredEvents()
{
    importArchivedRequests();
    for (Record &record : m_journal.loadAll())
        m_pending.push_back(std::move(record));
    removeCorruptRecords();
    reportJournalProblems();
    if (!m_enabled) {
        discardEverything();
        return;
    }
    if (!m_pending.empty()) {
        OSTLogging::logInfo(u"Unarchived %1 events."_s, m_pending.size());
        m_serialQueue.async([this] { startFlushTimer(); });
    }
}

void OSTEventManager::removeCorruptRecords()
{
    std::vector<Record> corrupt;
    const auto isCorrupt = [](const Record &record) { return !QJsonDocument::fromJson(record.json).isObject(); };
    for (auto record = m_pending.begin(); record != m_pending.end();) {
        if (!isCorrupt(*record)) {
            ++record;
            continue;
        }
        OSTLogging::logError(u"Stored event %1 is not a JSON object and can never be sent; it was removed: %2"_s,
                             record->id, QString::fromUtf8(record->json.left(80)));
        corrupt.push_back(std::move(*record));
        record = m_pending.erase(record);
    }
    m_journal.remove(storedIdsOf(corrupt));
}

void OSTEventManager::importArchivedRequests()
{
    OSTUserDefaultsManager &defaults = OSTUserDefaultsManager::sharedManager();
    const QVariant archived = defaults.objectForKey(archivedRequestsKey);
    if (!archived.isValid())
        return;
    std::vector<Record> records;
    for (const QVariant &event : archived.toMap().value(u"events"_s).toList()) {
        if (std::optional<QByteArray> json = OSTJsonWriter::serialized(event.toMap()))
            records.push_back({0, OSTEventJournal::Kind::Queued, *std::move(json)});
    }
    // The archive goes only once its events are safely in the journal.
    if (records.empty() || m_journal.append(records))
        defaults.removeObjectForKey(archivedRequestsKey);
}

void OSTEventManager::reportJournalProblems()
{
    for (const QString &problem : m_journal.takeProblems())
        OSTLogging::logError(problem);
}

void OSTEventManager::discardEverything()
{
    m_pending.clear();
    m_refusedParts.clear();
    m_heldBack.clear();
    m_journal.removeAll();
    stopFlushTimer();
    OSTClock::current().cancel(m_retryTimer);
    m_retryTimer = 0;
}

void OSTEventManager::setEventsEnabled(bool enabled)
{
    m_enabled = enabled;
    OSTUserDefaultsManager::sharedManager().setBool(enabled, eventsEnabledKey);
    if (!enabled)
        m_serialQueue.sync([this] { discardEverything(); });
}

void OSTEventManager::processLaunchResponse(const std::optional<QVariantMap> &response)
{
    if (!response)
        return;
    // A boolean reading as for any text or number the service sends ("1", "true", 1, true).
    const QVariant qa = response->value(u"is_qa"_s);
    m_isQA = qa.typeId() == QMetaType::QString ? ost_boolValue(qa.toString()) : ost_isNumber(qa) && qa.toBool();
}

size_t OSTEventManager::pendingEventCount() const
{
    size_t count = 0;
    m_serialQueue.sync([&] { count = waitingEventCount(); });
    return count;
}

size_t OSTEventManager::sendingEventCount() const
{
    size_t count = 0;
    m_serialQueue.sync([&] { count = m_inFlightCount; });
    return count;
}

void OSTEventManager::didEnterBackground()
{
    m_inBackground = true;
    m_serialQueue.sync([this] {
        stopFlushTimer();
        flushOnQueue(FlushKind::Immediate);
    });
}

void OSTEventManager::willEnterForeground()
{
    m_inBackground = false;
    m_serialQueue.async([this] {
        if (waitingEventCount() > 0)
            startFlushTimer();
    });
}

} // namespace ostrel
