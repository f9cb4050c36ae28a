#pragma once

#include <QString>
#include <QVariantMap>

namespace ostrel::demo {

// The parameters that tell one SDK milestone from another, as "key=value, ..." for people to
// read (the event panel, the walk's report).
class EventDetails {
public:
    EventDetails() = delete;
    static QString of(const QVariantMap &parameters);
};

} // namespace ostrel::demo
