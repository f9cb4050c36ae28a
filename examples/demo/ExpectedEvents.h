#pragma once

#include "ServiceEventLog.h"

#include <QList>
#include <QString>
#include <QVariantMap>

namespace ostrel::demo {

// The milestones a walk must produce, in order: each by its wire name and the parameters it
// must carry (other parameters may be there too).
class ExpectedEvents {
public:
    struct Expectation {
        QString eventType;
        QVariantMap parameters;
    };

    explicit ExpectedEvents(QList<Expectation> expectations);

    // The milestones of AutoplayWalk: the install flow into the sign-up flow of the demo
    // experience, then the log-in flow, rejected once.
    static ExpectedEvents demoWalk();

    const QList<Expectation> &expectations() const { return m_expectations; }

    // "" when the milestones among `events` are exactly the expected ones in the expected order;
    // otherwise what differs first, for a person to read.
    QString firstDifference(const QList<StoredEvent> &events) const;

private:
    static QString describe(const Expectation &expectation);
    static QString missingParameter(const Expectation &expectation, const StoredEvent &event);

    QList<Expectation> m_expectations;
};

} // namespace ostrel::demo
