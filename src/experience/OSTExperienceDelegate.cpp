#include <ostrel/OSTExperienceDelegate.h>

#include "experience/OSTDelegateDefaults.h"

namespace ostrel {

// Each default body only notes that it ran: the callback counts as not implemented.

OSTExperienceDelegate::~OSTExperienceDelegate() = default;

void OSTExperienceDelegate::willCloseWithFields(const QVariantMap &)
{
    OSTDelegateDefaults::noteDefaultBodyRan();
}

void OSTExperienceDelegate::validateUniqueFields(const QVariantMap &, ValidationCompletion)
{
    OSTDelegateDefaults::noteDefaultBodyRan();
}

void OSTExperienceDelegate::logInWithFields(const QVariantMap &, AuthenticationCompletion)
{
    OSTDelegateDefaults::noteDefaultBodyRan();
}

void OSTExperienceDelegate::signUpWithFields(const QVariantMap &, AuthenticationCompletion)
{
    OSTDelegateDefaults::noteDefaultBodyRan();
}

void OSTExperienceDelegate::recoverPasswordWithFields(const QVariantMap &, ValidationCompletion)
{
    OSTDelegateDefaults::noteDefaultBodyRan();
}

void OSTExperienceDelegate::authenticateFacebookWithFields(const QVariantMap &, AuthenticationCompletion)
{
    OSTDelegateDefaults::noteDefaultBodyRan();
}

} // namespace ostrel
