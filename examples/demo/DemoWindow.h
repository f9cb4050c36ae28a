#pragma once

#include <ostrel/OSTExperienceSettings.h>

#include <QVariantMap>
#include <QWidget>

#include <functional>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace ostrel::demo {

// The demo host's own window, the size of a phone screen: who is signed in, what the experience
// handed over to the host's delegate, and buttons that show the experiences again. Experiences
// are presented over it.
//
// Lives on the GUI thread; a top-level window owned by main().
class DemoWindow : public QWidget {
    Q_OBJECT

public:
    explicit DemoWindow(QWidget *parent = nullptr);

    // Adds what the delegate received and how the host answered to the hand-over log.
    void showHandOver(const QString &callback, const QVariantMap &fields, const QString &outcome);
    // Reads the SDK's current user again (not done on construction: a host measured without the
    // SDK must not touch it).
    void refreshUser();

private:
    void presentExperience(OSTExperienceType experienceType);
    // The object name lets the autoplay walk find the button.
    QPushButton *addButton(const QString &objectName, const QString &title, const std::function<void()> &action);

    QLabel *m_userLabel; // children
    QPlainTextEdit *m_handOverLog;
};

} // namespace ostrel::demo
