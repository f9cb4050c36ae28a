#include <ostrel/OSTValidationResult.h>

namespace ostrel {

bool OSTValidationResult::isValid() const
{
    return !m_defaultErrorMessage && m_invalidFields.isEmpty();
}

void OSTValidationResult::invalidateWithErrorMessage(const QString &message)
{
    if (message.isNull())
        m_defaultErrorMessage.reset();
    else
        m_defaultErrorMessage = message;
}

void OSTValidationResult::invalidateField(const QString &name)
{
    if (!name.isNull())
        m_invalidFields.append(name);
}

void OSTValidationResult::invalidateField(const QString &name, const QString &errorMessage)
{
    if (name.isNull())
        return;
    m_invalidFields.append(name);
    if (!errorMessage.isNull())
        m_errorMessages.insert(name, errorMessage);
}

} // namespace ostrel
