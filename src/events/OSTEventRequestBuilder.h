#pragma once

#include "events/OSTEventJournal.h"

#include <QByteArray>
#include <QString>

#include <deque>
#include <optional>

namespace ostrel {

// Assembles the JSON parameters of "event" requests from the events' stored JSON texts, by
// concatenation: no event is parsed or serialised again. A batch is {"events": [...], "token":
// ...}; a single event is its own object with "token" added. Stateless.
class OSTEventRequestBuilder {
public:
    static constexpr int maximumEventsPerRequest = 500;
    static constexpr qsizetype maximumBytesPerRequest = 1024 * 1024;

    OSTEventRequestBuilder() = delete;

    // How many records from the front of `pending` fit one request: at most 500 and at most
    // 1 MB of JSON, but always at least one (an event larger than the limit goes alone).
    static size_t batchSize(const std::deque<OSTEventJournal::Record> &pending);
    // The batch of the first `count` records of `pending`.
    static QByteArray batchParameters(const std::deque<OSTEventJournal::Record> &pending, size_t count,
                                      const std::optional<QString> &token);
    // Whether an event's JSON fits a request of its own.
    static bool fitsOneRequest(const QByteArray &eventJSON);
    // One event's parameters with "token" set (replacing one the event holds).
    static QByteArray singleParameters(const QByteArray &eventJSON, const std::optional<QString> &token);

private:
    static void appendToken(QByteArray &out, const std::optional<QString> &token);
};

} // namespace ostrel
