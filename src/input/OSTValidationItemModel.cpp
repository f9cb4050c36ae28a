#include "input/OSTValidationItemModel.h"

#include "core/OSTDictionaryHelpers.h"
#include "input/OSTValidationGroupModel.h"
#include "input/OSTValidationItem.h"

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

bool booleanProperty(const QVariantMap &properties, const QString &key)
{
    return ost_boolValue(ost_stringForKey(properties, key).value_or(QString()));
}

} // namespace

OSTValidationItemModel::OSTValidationItemModel(const QString &key, const QVariantMap &properties)
    : m_key(key)
    , m_optional(booleanProperty(properties, u"isOptional"_s))
    , m_unique(booleanProperty(properties, u"isUnique"_s))
    , m_userPropertyName(ost_stringForKey(properties, u"userPropertyName"_s).value_or(key))
    , m_defaultErrorMessage(ost_stringForKey(properties, u"errorMessage"_s).value_or(u"Invalid input."_s))
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
