#pragma once

#include <ostrel/OSTExport.h>

#include <QObject>
#include <QString>
#include <QVariantMap>

namespace ostrel {

// Tells Qt hosts about every milestone the SDK records (sessions, sign-up, log-in, flows,
// screens, taps), the same events OSTEventFiredNotification announces. Lives on the GUI thread;
// the signal is emitted from the SDK's event queue, so connections to widgets are queued:
//
//     QObject::connect(ostrel::OSTEventEmitter::sharedEmitter(), &ostrel::OSTEventEmitter::eventFired,
//                      label, [label](const QString &name, const QVariantMap &, const QString &) {
//                          label->setText(name);
//                      });
class OSTREL_EXPORT OSTEventEmitter : public QObject {
    Q_OBJECT

public:
    // The one instance, made on first use; it lives until the process ends.
    static OSTEventEmitter *sharedEmitter();

signals:
    // `name` is the event's wire name (it names the flow or screen), `type` one of the event-name
    // constants of OSTConstants.h.
    void eventFired(const QString &name, const QVariantMap &parameters, const QString &type);

private:
    OSTEventEmitter() = default;
};

} // namespace ostrel
