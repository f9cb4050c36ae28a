#include "events/OSTStatisticalEvent.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace ostrel {

OSTStatisticalEvent::OSTStatisticalEvent(const QVariantMap &parameters)
    : OSTEvent(eventName, markedAutomatic(parameters))
{
}

QString OSTStatisticalEvent::stringForEventType(int type)
{
    static const QHash<int, QString> names{
        {Failure, u"failure"_s}, {Success, u"success"_s}, {Timeout, u"timeout"_s}};
    return names.value(type);
}

OSTStatisticalEvent OSTStatisticalEvent::launchEvent(double timing, int type)
{
    return OSTStatisticalEvent(
        {{u"event"_s, u"launch"_s}, {u"timing"_s, timing}, {u"type"_s, stringForEventType(type)}});
}

OSTStatisticalEvent OSTStatisticalEvent::imageDownloadEvent(const QUrl &url, double timing, int type)
{
    return OSTStatisticalEvent({{u"event"_s, u"image_download"_s},
                                {u"image_url"_s, url.toString(QUrl::FullyEncoded)},
                                {u"timing"_s, timing},
                                {u"type"_s, stringForEventType(type)}});
}

OSTStatisticalEvent OSTStatisticalEvent::internalServerErrorEvent(const QUrl &url)
{
    return OSTStatisticalEvent({{u"event"_s, u"internal_server_error"_s}, {u"url"_s, url.toString(QUrl::FullyEncoded)}});
}

OSTStatisticalEvent OSTStatisticalEvent::screenLoadEvent(double timing, int type, Loading loading)
{
    return OSTStatisticalEvent({{u"event"_s, u"screen_load"_s},
                                {u"fully_loaded"_s, loading == Loading::Full},
                                {u"timing"_s, timing},
                                {u"type"_s, stringForEventType(type)}});
}

OSTStatisticalEvent OSTStatisticalEvent::refusedEventEvent(const QString &refusedName, int status)
{
    return OSTStatisticalEvent({{u"event"_s, u"event_refused"_s},
                                {u"event_name"_s, refusedName},
                                {u"status"_s, status},
                                {u"type"_s, stringForEventType(Failure)}});
}

OSTStatisticalEvent OSTStatisticalEvent::sessionStartEvent(double timing)
{
    return OSTStatisticalEvent({{u"event"_s, u"session_started"_s}, {u"timing"_s, timing}});
}

} // namespace ostrel
