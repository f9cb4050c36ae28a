#include "screen/OSTButtonDescription.h"

#include "core/OSTDictionaryHelpers.h"
#include "screen/OSTElementKeys.h"
#include "screen/OSTScreenVocabulary.h"

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

OSTElementKind kindOf(const QVariantMap &properties)
{
    return OSTElementKeys::buttonType(properties) == u"imageUpload"_s ? OSTElementKind::PictureButton
                                                                       : OSTElementKind::Button;
}

// A state's title, text look and background; the alignment is always the normal state's, as the
// title is one label whatever the state.
OSTButtonDescription::StateLook stateLook(const QString &key, QVariantMap state, const QVariantMap &normal)
{
    const auto background = std::make_shared<const OSTImageDescription>(key, ost_propertiesWithoutObjectShadow(state));
    const QString &alignmentKey = OSTScreenVocabulary::alignmentKey;
    state.remove(alignmentKey);
    if (normal.contains(alignmentKey))
        state.insert(alignmentKey, normal.value(alignmentKey));
    return {OSTElementKeys::text(state), OSTTextLook::fromProperties(state), background};
}

std::optional<OSTButtonDescription::StateLook> laidOverNormal(const QString &key, const QVariantMap &states,
                                                              const QString &name, const QVariantMap &normal)
{
    const auto state = ost_dictionaryForKey(states, name);
    if (!state)
        return std::nullopt;
    return stateLook(key, ost_mergeIntoDictionary(*state, normal), normal);
}

} // namespace

OSTButtonDescription::OSTButtonDescription(const QString &key, const QVariantMap &properties)
    : OSTElementDescription(kindOf(properties), key, properties),
      m_buttonAlpha(OSTElementKeys::alpha(properties, OSTElementKeys::NumberSpelling::NumberOrNumericString)),
      m_toggle(OSTElementKeys::buttonType(properties) == u"toggle"_s)
{
    if (const auto states = ost_dictionaryForKey(properties, u"states"_s)) {
        const QVariantMap normal =
            ost_mergeIntoDictionary(ost_dictionaryForKey(*states, u"normal"_s).value_or(QVariantMap()), properties);
        m_states = States{stateLook(key, normal, normal), laidOverNormal(key, *states, u"pressed"_s, normal),
                          laidOverNormal(key, *states, u"disabled"_s, normal)};
        m_buttonShadow = ost_objectShadowWithProperties(normal);
    }
    m_action = OSTElementKeys::onClick(properties);
    if (const auto selector = ost_dictionaryForKey(properties, u"imageSelector"_s)) {
        m_imageSelector = ImageSelector{ost_stringForKey(*selector, u"photosText"_s).value_or(u"Photos"_s),
                                        ost_stringForKey(*selector, u"cancelText"_s).value_or(u"Cancel"_s)};
    }
    if (OSTElementKeys::buttonType(properties))
        m_validation = OSTValidationSettings::fromProperties(key, properties);
}

OSTButtonDescription::~OSTButtonDescription() = default;

} // namespace ostrel
