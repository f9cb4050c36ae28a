#include "screen/OSTPickerDescription.h"

#include "screen/OSTContentInsets.h"
#include "screen/OSTElementKeys.h"

namespace ostrel {

OSTPickerDescription::OSTPickerDescription(const QString &key, const QVariantMap &properties)
    : OSTElementDescription(OSTElementKind::Picker, key, properties),
      m_background(std::make_shared<const OSTImageDescription>(key, ost_propertiesWithoutObjectShadow(properties))),
      m_text(std::make_shared<const OSTLabelDescription>(key, OSTElementKeys::inputText(properties))),
      m_contentInsets(ost_contentInsetsOf(properties)),
      m_toolbar(OSTElementKeys::toolbar(properties)),
      m_inputOrder(OSTElementKeys::inputOrder(properties)),
      m_wheel(OSTPickerWheel::fromPicker(OSTElementKeys::picker(properties).value_or(QVariantMap()))),
      m_validation(OSTValidationSettings::fromProperties(key, properties))
{
}

OSTPickerDescription::~OSTPickerDescription() = default;

} // namespace ostrel
