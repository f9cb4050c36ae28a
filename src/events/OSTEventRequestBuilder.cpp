#include "events/OSTEventRequestBuilder.h"

#include "core/OSTJsonWriter.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

// {"events":[ ],"token":"…"} around the events, generously.
constexpr qsizetype batchFrame = 64;

} // namespace

size_t OSTEventRequestBuilder::batchSize(const std::deque<OSTEventJournal::Record> &pending)
{
    size_t count = 0;
    qsizetype bytes = batchFrame;
    for (const OSTEventJournal::Record &record : pending) {
        bytes += record.json.size() + 1;
        if (count > 0 && (count == maximumEventsPerRequest || bytes > maximumBytesPerRequest))
            break;
        ++count;
    }
    return count;
}

QByteArray OSTEventRequestBuilder::batchParameters(const std::deque<OSTEventJournal::Record> &pending,
                                                   size_t count, const std::optional<QString> &token)
{
    qsizetype bytes = batchFrame + (token ? token->size() * 3 : 0);
    for (size_t index = 0; index < count; ++index)
        bytes += pending[index].json.size() + 1;
    QByteArray out;
    out.reserve(bytes);
    out.append("{\"events\":[");
    for (size_t index = 0; index < count; ++index) {
        if (index > 0)
            out.append(',');
        out.append(pending[index].json);
    }
    out.append(']');
    appendToken(out, token);
    out.append('}');
    return out;
}

bool OSTEventRequestBuilder::fitsOneRequest(const QByteArray &eventJSON)
{
    return batchFrame + eventJSON.size() + 1 <= maximumBytesPerRequest;
}

QByteArray OSTEventRequestBuilder::singleParameters(const QByteArray &eventJSON, const std::optional<QString> &token)
{
    if (!token)
        return eventJSON;
    // The event may hold a "token" of its own (the device fingerprint carries one): it is
    // replaced, not repeated. Single requests carry small internal events, so parsing is cheap.
    QJsonObject event = QJsonDocument::fromJson(eventJSON).object();
    event.insert(u"token"_s, *token);
    return QJsonDocument(event).toJson(QJsonDocument::Compact);
}

void OSTEventRequestBuilder::appendToken(QByteArray &out, const std::optional<QString> &token)
{
    if (!token)
        return;
    out.append(",\"token\":");
    OSTJsonWriter::appendString(out, *token);
}

} // namespace ostrel
