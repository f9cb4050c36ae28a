#pragma once

#include "AutoplayToolkit.h"
#include "ExpectedEvents.h"
#include "ServiceEventLog.h"
#include "VerificationPINReader.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVariantMap>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace ostrel::demo {

// Walks the demo experience by itself, as a person would: the install flow into the sign-up
// flow, then the host's log-in (first with an address the host does not know, which it
// rejects, then with the signed-up one). It waits for each screen, taps buttons, types into the
// text fields (found by their element keys), chooses a country with the arrow keys, reads the PIN
// the service sent, saves a picture of every screen, then reads what the service stored and
// checks that the expected milestones arrived in order.
//
// Steps run one per tick of a short timer; a step that waits (for a screen, the PIN, the
// dismissal, the service) is tried again on the next tick. A watchdog ends the walk with a
// message naming the step it was stuck on. Ends by emitting finished() once.
//
// What it does on screen goes through an AutoplayToolkit, so the same walk drives a Qt Widgets host
// and a Qt Quick host.
//
// Lives on the GUI thread; owns the toolkit, which acts on the host window the experience covers.
class AutoplayWalk : public QObject {
    Q_OBJECT

public:
    struct Settings {
        QString screensFolder;
        QString serviceOutputPath;
        QString serviceDatabasePath;
        std::chrono::milliseconds timeLimit{45000};
        // How long the service may take to store the last event after the walk.
        std::chrono::milliseconds eventWait{10000};
    };

    AutoplayWalk(std::unique_ptr<AutoplayToolkit> toolkit, Settings settings, QObject *parent = nullptr);

    void start();

signals:
    // 0 when the walk went through and the service received the expected events in order.
    void finished(int exitCode);

private:
    enum class Progress { Done, Waiting };
    struct Step {
        QString description;
        std::function<Progress()> run;
    };

    void addSteps();
    void addStep(const QString &description, std::function<Progress()> run);
    void runCurrentStep();
    void screenDisplayed(const QString &screenKey);

    Progress waitForScreen(const QString &screenKey);
    Progress tap(const QString &elementKey);
    Progress type(const QString &elementKey, const QString &text);
    Progress pressKeyInPicker(const QString &pickerKey, Qt::Key key);
    // Waits until `milliseconds` have passed since the last tap or typing.
    Progress pause(qint64 milliseconds) const;
    Progress saveScreen(const QString &screenKey);
    Progress enterSentPIN();
    Progress waitForDismissal();
    Progress checkStoredEvents();

    void printStoredEvents(const QList<StoredEvent> &events) const;
    void finish(int exitCode, const QString &message);

    const std::unique_ptr<AutoplayToolkit> m_toolkit;
    const Settings m_settings;
    const VerificationPINReader m_pinReader;
    const ServiceEventLog m_eventLog;
    const ExpectedEvents m_expectedEvents;
    QList<Step> m_steps;
    qsizetype m_currentStep = 0;
    QTimer m_ticker;
    QTimer m_watchdog;
    QString m_shownScreen;
    QElapsedTimer m_sinceScreenShown;
    QElapsedTimer m_sinceLastInput;
    int m_savedScreens = 0;
    std::optional<QElapsedTimer> m_eventCheckStarted;
    std::optional<QElapsedTimer> m_eventsMatchedSince;
    bool m_finished = false;
};

} // namespace ostrel::demo
