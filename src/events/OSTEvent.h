#pragma once

#include <QString>
#include <QVariantMap>

namespace ostrel {

// Something the SDK reports to the service: a name and a flat dictionary of parameters. Every
// event carries its own "ost_event_id" (so the service can drop duplicates) and "event_type"
// (its name). Immutable once made; safe to share between threads.
class OSTEvent {
public:
    explicit OSTEvent(const QString &name, const QVariantMap &parameters = {});
    virtual ~OSTEvent() = default;

    QString name() const { return m_name; }
    const QVariantMap &parameters() const { return m_parameters; }

protected:
    // The parameters with "auto" = true, which tells the service the SDK made the event itself.
    static QVariantMap markedAutomatic(QVariantMap parameters);

private:
    QString m_name;
    QVariantMap m_parameters;
};

} // namespace ostrel
