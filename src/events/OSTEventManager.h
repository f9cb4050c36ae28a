#pragma once

#include <ostrel/OSTError.h>

#include "events/OSTEvent.h"
#include "events/OSTEventJournal.h"
#include "events/OSTEventRetryPolicy.h"
#include "platform/OSTClock.h"
#include "platform/OSTNotificationCenter.h"
#include "platform/OSTSerialQueue.h"

#include <QString>
#include <QVariantMap>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace ostrel {

class OSTInternalEvent;

// Turns events into requests to the service's "event" endpoint. Internal events are announced to
// the host and sent at once; every other event waits for the next flush: every 60 s, on entering
// the background, or when the host asks. Requests carry at most 500 events or 1 MB of JSON.
//
// Nothing is lost: every event is written to the journal (OSTEventJournal) before sendEvent()
// returns, as the JSON text that goes on the wire, and is deleted only when the service has
// answered "OK" for the request that carried it. The next start sends whatever the journal
// holds. At most 10,000 events are kept; beyond that the oldest non-internal ones are dropped
// with a warning. After a failed send the next attempt waits (OSTEventRetryPolicy).
//
// One bad event must not hold the others back. An event that no request could carry (larger
// than a request, or nested deeper than OSTJsonWriter::maximumDepth) is refused at intake with a
// warning. A request the service refuses outright (a 4xx other than 401, 408 and 429) is split
// in halves that go at once, so everything deliverable is delivered; an event refused on its own
// is tried again alone at the next flushes and dropped after maximumRefusals, with an error line
// and an "event_refused" statistic. A journal row that is not a JSON object is removed at start.
//
// Lives for the whole process. sendEvent() may be called from any thread; concurrent callers
// share one journal transaction. All queue state lives on the serial queue
// "com.ostrelhq.eventManagerQueue", where sends and their completions run.
class OSTEventManager {
public:
    static constexpr int maximumStoredEvents = 10000;
    static constexpr double flushInterval = 60.0;
    static constexpr double requestTimeout = 5.0;
    static constexpr int maximumRefusals = 3;
    static inline const QString archivedRequestsKey = QStringLiteral("OSTArchivedFlushRequestParametersKey");
    static inline const QString eventsEnabledKey = QStringLiteral("OSTEventsEnabledKey");

    // Whether a flush waits for the retry delay after a failure (the timer's flushes do) or goes
    // at once (entering the background, the host's request).
    enum class FlushKind { Scheduled, Immediate };

    static OSTEventManager &sharedManager();

    OSTEventManager(const OSTEventManager &) = delete;
    OSTEventManager &operator=(const OSTEventManager &) = delete;

    // Takes in an event; returns once it is stored. Does nothing (beyond announcing an internal
    // event) while events are disabled.
    void sendEvent(const std::shared_ptr<const OSTEvent> &event);
    // The host's events. Parameters JSON cannot carry are left out with one warning.
    void sendEventWithName(const QString &name, const QVariantMap &parameters);

    // Reads "is_qa" (default false); a missing response changes nothing.
    void processLaunchResponse(const std::optional<QVariantMap> &response);
    bool isQA() const { return m_isQA.load(); }

    void flush(FlushKind kind);

    // Off: nothing is taken in, stored or sent, and the journal is emptied; internal events are
    // still announced. Persisted.
    void setEventsEnabled(bool enabled);
    bool eventsEnabled() const { return m_enabled.load(); }

    // The number of events waiting to be sent, and of those on the wire now.
    size_t pendingEventCount() const;
    size_t sendingEventCount() const;
    const OSTSerialQueue &serialQueue() const { return m_serialQueue; }

private:
    using Record = OSTEventJournal::Record;

    // One event on its way from a caller to the queue.
    struct Intake {
        Record record;
        std::shared_ptr<const OSTEvent> event;
    };

    // How the service dealt with a request.
    struct Delivery {
        enum class Result { Delivered, Refused, Failed };
        Result result = Result::Failed;
        int status = 0;
    };
    static Delivery deliveryOf(const std::optional<QString> &answer, const std::optional<OSTError> &error);

    OSTEventManager();

    // --- Intake (any thread) ---
    std::optional<Intake> prepareIntake(const std::shared_ptr<const OSTEvent> &event) const;
    void commitIntake(Intake intake);
    void writeInboxBatch(std::unique_lock<std::mutex> &lock);
    static void announce(const OSTInternalEvent &event);

    // --- On the serial queue ---
    void takeIn(const std::vector<Intake> &batch);
    void enforceStorageLimit();
    void reportDroppedEvents();
    void flushOnQueue(FlushKind kind);
    void sendNextBatch();
    void sendRecords(std::vector<Record> records, QByteArray parameters, bool isBatch);
    void requestDidComplete(const std::vector<Record> &records, bool isBatch, Delivery delivery);
    void requeue(const std::vector<Record> &records);
    void setAsideRefused(const std::vector<Record> &records, int status);
    void dropRefused(const Record &record, int status);
    void retryHeldBackEvents();
    size_t waitingEventCount() const;
    void removeCorruptRecords();
    void scheduleRetry();
    void confirmSessionStartIfCarried(const std::vector<Record> &records);
    void startFlushTimer();
    void stopFlushTimer();
    void flushTimerFired();
    void restoreStoredEvents();
    void importArchivedRequests();
    void reportJournalProblems();
    void discardEverything();

    void didEnterBackground();
    void willEnterForeground();

    OSTSerialQueue m_serialQueue;
    OSTEventJournal m_journal;

    std::atomic<bool> m_isQA = false;
    std::atomic<bool> m_enabled = true;
    std::atomic<bool> m_inBackground = false;

    // Group commit: callers append to the inbox; one of them writes everything waiting.
    std::mutex m_inboxMutex;
    std::condition_variable m_inboxCommitted;
    std::vector<Intake> m_inbox;
    quint64 m_enqueuedCount = 0;
    quint64 m_committedCount = 0;
    bool m_inboxWriting = false;

    // Serial-queue state.
    std::deque<Record> m_pending;
    // Parts of refused requests, sent one by one before anything in m_pending.
    std::deque<std::deque<Record>> m_refusedParts;
    // Events refused on their own; each goes alone again at the next flush.
    std::vector<Record> m_heldBack;
    size_t m_inFlightCount = 0;
    size_t m_droppedSinceReport = 0;
    bool m_batchInFlight = false;
    OSTEventRetryPolicy m_retryPolicy;
    double m_retryAt = 0.0;
    OSTTimerId m_retryTimer = 0;
    OSTTimerId m_flushTimer = 0;
    qint64 m_sessionStartRecord = 0;
    double m_sessionStartSentAt = 0.0;
    bool m_sessionStartConfirmed = false;

    OSTObserverToken m_backgroundObserver = 0;
    OSTObserverToken m_foregroundObserver = 0;
};

} // namespace ostrel
