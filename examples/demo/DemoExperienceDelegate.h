#pragma once

#include "DemoAccounts.h"

#include <ostrel/OSTExperienceDelegate.h>

#include <QObject>
#include <QString>
#include <QVariantMap>

#include <chrono>

namespace ostrel::demo {

// The demo host's answers to the experience: sign-ups and log-ins against its own accounts
// (DemoAccounts), unique e-mail addresses, password recovery for known addresses. Each answer
// comes after `answerDelay`, as from a back end, so the experience shows its loading overlay.
// Every callback is announced through received(), which the window shows, after the answer went
// to the SDK: by then the SDK has recorded a sign-up or log-in, so the window shows the user the
// SDK reports.
//
// Lives on the GUI thread; the host keeps it in a shared_ptr for as long as the SDK should call it.
class DemoExperienceDelegate : public QObject, public OSTExperienceDelegate {
    Q_OBJECT

public:
    explicit DemoExperienceDelegate(std::chrono::milliseconds answerDelay, QObject *parent = nullptr);

    const DemoAccounts &accounts() const { return m_accounts; }

    void willCloseWithFields(const QVariantMap &fields) override;
    void validateUniqueFields(const QVariantMap &fields, ValidationCompletion completion) override;
    void logInWithFields(const QVariantMap &fields, AuthenticationCompletion completion) override;
    void signUpWithFields(const QVariantMap &fields, AuthenticationCompletion completion) override;
    void recoverPasswordWithFields(const QVariantMap &fields, ValidationCompletion completion) override;
    void authenticateFacebookWithFields(const QVariantMap &fields, AuthenticationCompletion completion) override;

signals:
    // `callback` names the delegate call, `outcome` says how the host answered it.
    void received(const QString &callback, const QVariantMap &fields, const QString &outcome);

private:
    void answerLater(std::function<void()> answer);

    const std::chrono::milliseconds m_answerDelay;
    DemoAccounts m_accounts;
};

} // namespace ostrel::demo
