#include "model/OSTValidationItemModel.h"

#include "model/OSTValidationGroupModel.h"
#include "model/OSTValidationItem.h"

namespace ostrel {

OSTValidationItemModel::OSTValidationItemModel(const QString &key, const OSTValidationSettings &settings)
    : m_key(key)
    , m_optional(settings.optional)
    , m_unique(settings.unique)
    , m_userPropertyName(settings.userPropertyName)
    , m_defaultErrorMessage(settings.errorMessage)
{
}

void OSTValidationItemModel::setValid(bool valid)
{
    const bool changed = valid != m_valid;
    m_valid = valid;
    if (changed) {
        if (OSTValidationItem *input = item())
            input->validityChanged();
    }
    // A result's message no longer applies once the input judges itself valid.
    if (valid)
        m_errorMessage.reset();
    if (const auto group = m_group.lock())
        group->itemValidityWasSet();
}

QString OSTValidationItemModel::errorMessage() const
{
    return m_errorMessage.value_or(m_defaultErrorMessage);
}

void OSTValidationItemModel::setErrorMessage(const std::optional<QString> &message)
{
    m_errorMessage = message;
}

bool OSTValidationItemModel::shouldShowErrorMessage() const
{
    const OSTValidationItem *input = item();
    return input && input->shouldShowErrorMessage();
}

OSTValidationItem *OSTValidationItemModel::item() const
{
    return m_item.lock().get();
}

void OSTValidationItemModel::setItem(OSTValidationItem *input)
{
    m_item = input ? input->weakReference() : std::weak_ptr<OSTValidationItem>();
}

void OSTValidationItemModel::valueChanged()
{
    if (const OSTValidationItem *input = item())
        m_value = input->value();
}

} // namespace ostrel
