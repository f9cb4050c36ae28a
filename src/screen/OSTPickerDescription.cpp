#include "screen/OSTPickerDescription.h"

#include "core/OSTDictionaryHelpers.h"
#include "screen/OSTContentInsets.h"
#include "screen/OSTPropertyValues.h"

using namespace Qt::StringLiterals;

namespace ostrel {

OSTPickerDescription::OSTPickerDescription(const QString &key, const QVariantMap &properties)
    : OSTElementDescription(OSTElementKind::Picker, key, properties),
      m_background(std::make_shared<const OSTImageDescription>(key, ost_propertiesWithoutObjectShadow(properties))),
      m_text(std::make_shared<const OSTLabelDescription>(
          key, ost_dictionaryForKey(properties, u"text"_s).value_or(QVariantMap()))),
      m_contentInsets(ost_contentInsetsForKey(properties, u"contentInsets"_s)),
      m_inputOrder(ost_integerForKey(properties, u"inputOrder"_s)),
      m_wheel(OSTPickerWheel::fromPicker(ost_dictionaryForKey(properties, u"picker"_s).value_or(QVariantMap()))),
      m_validation(OSTValidationSettings::fromProperties(key, properties))
{
    if (const std::optional<QVariantMap> toolbar = ost_dictionaryForKey(properties, u"toolbar"_s))
        m_toolbar = OSTToolbarSettings::fromProperties(*toolbar);
}

OSTPickerDescription::~OSTPickerDescription() = default;

} // namespace ostrel
