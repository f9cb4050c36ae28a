#pragma once

#include <ostrel/OSTExperienceSettings.h>

#include <QObject>
#include <QPointer>
#include <QQuickWindow>
#include <QString>
#include <QVariantMap>

namespace ostrel::demo {

// What the Qt Quick demo host's window (DemoHost.qml) shows and does, the same as DemoWindow: who
// is signed in, what the experience handed over to the host's delegate, and the buttons that show
// the experiences again or log out. Experiences are presented over the QML window.
//
// Lives on the GUI thread; owned by main(); holds the window weakly (the QML engine owns it).
class QuickDemoHost : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString ostrelVersion READ ostrelVersion CONSTANT)
    Q_PROPERTY(QString signedInUser READ signedInUser NOTIFY signedInUserChanged)
    Q_PROPERTY(QString handOverLog READ handOverLog NOTIFY handOverLogChanged)

public:
    explicit QuickDemoHost(QObject *parent = nullptr);

    // The window experiences are presented over; set once QML made it.
    void setWindow(QQuickWindow *window) { m_window = window; }

    QString ostrelVersion() const;
    QString signedInUser() const { return m_signedInUser; }
    QString handOverLog() const { return m_handOverLog; }

    // Adds what the delegate received and how the host answered to the hand-over log.
    void showHandOver(const QString &callback, const QVariantMap &fields, const QString &outcome);
    // Reads the SDK's current user again.
    void refreshUser();

    Q_INVOKABLE void showAutomaticExperience() { presentExperience(OSTExperienceTypeAutomatic); }
    Q_INVOKABLE void showSignUp() { presentExperience(OSTExperienceTypeSignUp); }
    Q_INVOKABLE void showLogIn() { presentExperience(OSTExperienceTypeLogin); }
    Q_INVOKABLE void logOut();

signals:
    void signedInUserChanged();
    void handOverLogChanged();

private:
    void presentExperience(OSTExperienceType experienceType);
    void appendToLog(const QString &entry);

    QPointer<QQuickWindow> m_window;
    QString m_signedInUser;
    QString m_handOverLog;
};

} // namespace ostrel::demo
