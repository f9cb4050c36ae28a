#include "AutoplayWalk.h"

#include <ostrel/OSTConstants.h>
#include <ostrel/OSTEventEmitter.h>
#include <ostrel/Ostrel.h>

#include <QDir>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace ostrel::demo {

namespace {

// A pushed screen slides in; input waits until it has come to rest.
constexpr qint64 settleMilliseconds = 600;
constexpr int tickMilliseconds = 100;
// A tapped switch or button animates before a picture shows its new state.
constexpr qint64 inputSettleMilliseconds = 400;
// Longer than the host takes to answer and the loading overlay to fade.
constexpr qint64 answerMilliseconds = 1200;
// Once the expected events are all there, the walk watches a little longer for extra ones.
constexpr qint64 quietMilliseconds = 1000;

const QString walkName = u"Ada Lovelace"_s;
const QString walkEmail = u"ada@example.com"_s;
const QString walkPassword = u"lovelace1843"_s;
const QString walkPhone = u"612345678"_s;
const QString strangerEmail = u"grace@example.com"_s;

void say(const QString &line)
{
    QTextStream(stdout) << "autoplay: " << line << Qt::endl;
}

} // namespace

AutoplayWalk::AutoplayWalk(std::unique_ptr<AutoplayToolkit> toolkit, Settings settings, QObject *parent)
    : QObject(parent),
      m_toolkit(std::move(toolkit)),
      m_settings(std::move(settings)),
      m_pinReader(m_settings.serviceOutputPath),
      m_eventLog(m_settings.serviceDatabasePath),
      m_expectedEvents(ExpectedEvents::demoWalk())
{
    m_ticker.setInterval(tickMilliseconds);
    connect(&m_ticker, &QTimer::timeout, this, &AutoplayWalk::runCurrentStep);
    m_watchdog.setSingleShot(true);
    m_watchdog.setInterval(m_settings.timeLimit);
    connect(&m_watchdog, &QTimer::timeout, this, [this] {
        const QString step = m_currentStep < m_steps.size() ? m_steps.at(m_currentStep).description : u"the end"_s;
        finish(3, u"gave up after %1 s, stuck at: %2"_s.arg(m_settings.timeLimit.count() / 1000).arg(step));
    });
    connect(OSTEventEmitter::sharedEmitter(), &OSTEventEmitter::eventFired, this,
            [this](const QString &, const QVariantMap &parameters, const QString &type) {
                if (type == OSTScreenDisplayedEvent)
                    screenDisplayed(parameters.value(u"experience_key"_s).toString());
            });
    addSteps();
}

void AutoplayWalk::start()
{
    QDir().mkpath(m_settings.screensFolder);
    m_toolkit->activateWindow();
    m_watchdog.start();
    m_ticker.start();
}

void AutoplayWalk::addSteps()
{
    addStep(u"the welcome screen"_s, [this] { return waitForScreen(u"welcome"_s); });
    addStep(u"picture of welcome"_s, [this] { return saveScreen(u"welcome"_s); });
    addStep(u"tap Create an account"_s, [this] { return tap(u"createAccount"_s); });

    addStep(u"the sign-up screen"_s, [this] { return waitForScreen(u"signup"_s); });
    addStep(u"type the name"_s, [this] { return type(u"name"_s, walkName); });
    addStep(u"type the e-mail address"_s, [this] { return type(u"email"_s, walkEmail); });
    addStep(u"type the password"_s, [this] { return type(u"password"_s, walkPassword); });
    addStep(u"open the country picker"_s, [this] { return tap(u"country"_s); });
    for (const QString &country : {u"Canada"_s, u"the United Kingdom"_s, u"France"_s})
        addStep(u"arrow down to "_s + country, [this] { return pressKeyInPicker(u"country"_s, Qt::Key_Down); });
    addStep(u"choose it with Return"_s, [this] { return pressKeyInPicker(u"country"_s, Qt::Key_Return); });
    addStep(u"type the phone number"_s, [this] { return type(u"phone"_s, walkPhone); });
    addStep(u"picture of signup"_s, [this] { return saveScreen(u"signup"_s); });
    addStep(u"tap Continue on the sign-up screen"_s, [this] { return tap(u"signupContinue"_s); });

    addStep(u"the PIN screen (the service must accept the phone number)"_s,
            [this] { return waitForScreen(u"verify"_s); });
    addStep(u"picture of verify"_s, [this] { return saveScreen(u"verify"_s); });
    addStep(u"type the PIN the service sent"_s, [this] { return enterSentPIN(); });

    addStep(u"the interests screen (the PIN must match)"_s, [this] { return waitForScreen(u"interests"_s); });
    addStep(u"choose Plan my week"_s, [this] { return tap(u"planning"_s); });
    addStep(u"choose Build better habits"_s, [this] { return tap(u"habits"_s); });
    addStep(u"picture of interests"_s, [this] { return saveScreen(u"interests"_s); });
    addStep(u"tap Continue on the interests screen"_s, [this] { return tap(u"interestsContinue"_s); });

    addStep(u"the notifications screen"_s, [this] { return waitForScreen(u"notifications"_s); });
    addStep(u"switch weekly tips on"_s, [this] { return tap(u"tips"_s); });
    addStep(u"picture of notifications"_s, [this] { return saveScreen(u"notifications"_s); });
    addStep(u"tap Finish"_s, [this] { return tap(u"finish"_s); });

    addStep(u"the sign-up hand-over and the experience closing"_s, [this] { return waitForDismissal(); });

    addStep(u"tap the host's Log in button"_s, [this] { return tap(u"showLogIn"_s); });
    addStep(u"the log-in screen"_s, [this] { return waitForScreen(u"login"_s); });
    addStep(u"type an address nobody signed up with"_s, [this] { return type(u"loginEmail"_s, strangerEmail); });
    addStep(u"type the password"_s, [this] { return type(u"loginPassword"_s, walkPassword); });
    addStep(u"tap Log in with the unknown address"_s, [this] { return tap(u"loginSubmit"_s); });
    addStep(u"the host's answer"_s, [this] { return pause(answerMilliseconds); });
    addStep(u"picture of login"_s, [this] { return saveScreen(u"login-rejected"_s); });
    addStep(u"correct the address"_s, [this] { return type(u"loginEmail"_s, walkEmail); });
    addStep(u"tap Log in with the signed-up address"_s, [this] { return tap(u"loginSubmit"_s); });
    addStep(u"the log-in hand-over and the experience closing"_s, [this] { return waitForDismissal(); });
    addStep(u"the service storing the expected events"_s, [this] { return checkStoredEvents(); });
}

void AutoplayWalk::addStep(const QString &description, std::function<Progress()> run)
{
    m_steps.append(Step{description, std::move(run)});
}

void AutoplayWalk::runCurrentStep()
{
    if (m_finished || m_currentStep >= m_steps.size())
        return;
    const Step &step = m_steps.at(m_currentStep);
    if (step.run() == Progress::Waiting || m_finished)
        return;
    ++m_currentStep;
    if (m_currentStep == m_steps.size())
        finish(0, u"the service received the %1 expected events in order"_s.arg(m_expectedEvents.expectations().size()));
}

void AutoplayWalk::screenDisplayed(const QString &screenKey)
{
    m_shownScreen = screenKey;
    m_sinceScreenShown.start();
}

AutoplayWalk::Progress AutoplayWalk::waitForScreen(const QString &screenKey)
{
    if (m_shownScreen != screenKey || m_sinceScreenShown.elapsed() < settleMilliseconds)
        return Progress::Waiting;
    say(u"on screen \"%1\""_s.arg(screenKey));
    return Progress::Done;
}

AutoplayWalk::Progress AutoplayWalk::tap(const QString &elementKey)
{
    if (!m_toolkit->tap(elementKey))
        return Progress::Waiting;
    m_sinceLastInput.start();
    return Progress::Done;
}

AutoplayWalk::Progress AutoplayWalk::type(const QString &elementKey, const QString &text)
{
    if (!m_toolkit->typeInto(elementKey, text))
        return Progress::Waiting;
    m_sinceLastInput.start();
    return Progress::Done;
}

AutoplayWalk::Progress AutoplayWalk::pressKeyInPicker(const QString &pickerKey, Qt::Key key)
{
    return m_toolkit->pressKeyInPicker(pickerKey, key) ? Progress::Done : Progress::Waiting;
}

AutoplayWalk::Progress AutoplayWalk::pause(qint64 milliseconds) const
{
    return m_sinceLastInput.elapsed() < milliseconds ? Progress::Waiting : Progress::Done;
}

AutoplayWalk::Progress AutoplayWalk::saveScreen(const QString &screenKey)
{
    if (m_sinceLastInput.isValid() && m_sinceLastInput.elapsed() < inputSettleMilliseconds)
        return Progress::Waiting;
    ++m_savedScreens;
    const QString path =
        QDir(m_settings.screensFolder).filePath(u"%1-%2.png"_s.arg(m_savedScreens, 2, 10, QChar(u'0')).arg(screenKey));
    if (!m_toolkit->grabScreen().save(path)) {
        finish(2, u"cannot write %1"_s.arg(path));
        return Progress::Waiting;
    }
    say(u"saved %1"_s.arg(path));
    return Progress::Done;
}

AutoplayWalk::Progress AutoplayWalk::enterSentPIN()
{
    const std::optional<VerificationPINReader::Verification> verification = m_pinReader.lastVerification();
    if (!verification)
        return Progress::Waiting;
    const Progress typed = type(u"pin"_s, verification->pin);
    if (typed == Progress::Done)
        say(u"typed PIN %1, which the service sent to %2"_s.arg(verification->pin, verification->phoneNumber));
    return typed;
}

AutoplayWalk::Progress AutoplayWalk::waitForDismissal()
{
    if (Ostrel::isPresentingExperience())
        return Progress::Waiting;
    say(u"the experience closed"_s);
    return Progress::Done;
}

AutoplayWalk::Progress AutoplayWalk::checkStoredEvents()
{
    if (!m_eventCheckStarted)
        m_eventCheckStarted.emplace().start();
    QString error;
    const std::optional<QList<StoredEvent>> events = m_eventLog.read(error);
    if (!events) {
        finish(2, u"cannot read the service's database %1: %2"_s.arg(m_settings.serviceDatabasePath, error));
        return Progress::Waiting;
    }
    const QString difference = m_expectedEvents.firstDifference(*events);
    if (difference.isEmpty()) {
        if (!m_eventsMatchedSince)
            m_eventsMatchedSince.emplace().start();
        if (m_eventsMatchedSince->elapsed() < quietMilliseconds)
            return Progress::Waiting;
        printStoredEvents(*events);
        return Progress::Done;
    }
    m_eventsMatchedSince.reset();
    if (m_eventCheckStarted->elapsed() < m_settings.eventWait.count())
        return Progress::Waiting;
    printStoredEvents(*events);
    finish(1, u"the service did not receive the expected events: "_s + difference);
    return Progress::Waiting;
}

void AutoplayWalk::printStoredEvents(const QList<StoredEvent> &events) const
{
    say(u"the service stored %1 events, in the order the SDK recorded them:"_s.arg(events.size()));
    for (const StoredEvent &event : events)
        QTextStream(stdout) << "    " << event.summary() << Qt::endl;
}

void AutoplayWalk::finish(int exitCode, const QString &message)
{
    if (m_finished)
        return;
    m_finished = true;
    m_ticker.stop();
    m_watchdog.stop();
    say((exitCode == 0 ? u"passed: "_s : u"FAILED: "_s) + message);
    emit finished(exitCode);
}

} // namespace ostrel::demo
