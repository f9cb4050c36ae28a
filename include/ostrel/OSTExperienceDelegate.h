#pragma once

#include <ostrel/OSTExport.h>
#include <ostrel/OSTValidationResult.h>

#include <QString>
#include <QVariantMap>

#include <functional>

namespace ostrel {

// What an experience asks of the host application: validating fields against the host's own
// records, and signing up, logging in or recovering a password with them. Field dictionaries are
// keyed by user-property name.
//
// Every callback is optional. Override the ones the host answers; the SDK treats a callback that
// is not overridden as absent and goes on without it (a screen with unique fields then moves on
// unvalidated, for example). The SDK finds that out by the default body running, so an override
// must not call the base class's version. A callback with a completion must call it exactly
// once, on the GUI thread, possibly later.
//
// Set it with Ostrel::setExperienceDelegate(); the SDK holds it weakly and stops calling it once
// the host's last shared_ptr to it is gone. Callbacks arrive on the GUI thread.
class OSTREL_EXPORT OSTExperienceDelegate {
public:
    using ValidationCompletion = std::function<void(const OSTValidationResult &result)>;
    // A result that is not valid keeps the user on the screen; otherwise `userID` (may be empty)
    // becomes the logged-in user.
    using AuthenticationCompletion = std::function<void(const OSTValidationResult &result, const QString &userID)>;

    virtual ~OSTExperienceDelegate();

    // The experience is about to close because the user asked to; `fields` holds what was entered.
    virtual void willCloseWithFields(const QVariantMap &fields);
    // A screen with fields marked unique is about to be left.
    virtual void validateUniqueFields(const QVariantMap &fields, ValidationCompletion completion);
    // The end of the log-in flow.
    virtual void logInWithFields(const QVariantMap &fields, AuthenticationCompletion completion);
    // The end of the sign-up flow.
    virtual void signUpWithFields(const QVariantMap &fields, AuthenticationCompletion completion);
    // The end of the password-recovery flow.
    virtual void recoverPasswordWithFields(const QVariantMap &fields, ValidationCompletion completion);
    // A social log-in from a screen succeeded; `fields` holds what it returned.
    virtual void authenticateFacebookWithFields(const QVariantMap &fields, AuthenticationCompletion completion);
};

} // namespace ostrel
