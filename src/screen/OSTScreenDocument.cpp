#include "screen/OSTScreenDocument.h"

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTLogging.h"
#include "screen/OSTButtonDescription.h"
#include "screen/OSTElementKeys.h"
#include "screen/OSTImageDescription.h"
#include "screen/OSTPickerDescription.h"
#include "screen/OSTScreenVocabulary.h"
#include "screen/OSTSwitchDescription.h"
#include "screen/OSTTextFieldDescription.h"

#include <QJsonDocument>
#include <QJsonParseError>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

std::shared_ptr<const OSTElementDescription> buttonOf(const QString &key, const QVariantMap &properties)
{
    if (OSTElementKeys::buttonType(properties) == u"toggleSwitch"_s)
        return std::make_shared<const OSTSwitchDescription>(key, properties);
    return std::make_shared<const OSTButtonDescription>(key, properties);
}

std::shared_ptr<const OSTElementDescription> inputOf(const QString &key, const QVariantMap &properties)
{
    if (OSTElementKeys::picker(properties))
        return std::make_shared<const OSTPickerDescription>(key, properties);
    return std::make_shared<const OSTTextFieldDescription>(key, properties);
}

std::shared_ptr<const OSTElementDescription> elementOf(OSTElementFamily family, const QString &key,
                                                       const QVariantMap &properties)
{
    switch (family) {
    case OSTElementFamily::Image:
        return std::make_shared<const OSTImageDescription>(key, properties);
    case OSTElementFamily::Label:
        return std::make_shared<const OSTLabelDescription>(key, properties);
    case OSTElementFamily::Input:
        return inputOf(key, properties);
    case OSTElementFamily::Button:
        return buttonOf(key, properties);
    case OSTElementFamily::Group:
        return std::make_shared<const OSTElementDescription>(OSTElementKind::Group, key, properties);
    case OSTElementFamily::Shape:
    case OSTElementFamily::SelectionGroup:
        break;
    }
    return std::make_shared<const OSTElementDescription>(OSTElementKind::Shape, key, properties);
}

QString reasonNotAnObject(const QString &text, std::optional<QVariantMap> &layout)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8(), &error);
    if (error.error != QJsonParseError::NoError)
        return u"Screen JSON does not parse at offset %1: %2"_s.arg(error.offset).arg(error.errorString());
    if (!document.isObject())
        return u"Screen JSON is not an object"_s;
    layout = document.toVariant().toMap();
    return {};
}

} // namespace

std::shared_ptr<const OSTScreenDocument> OSTScreenDocument::read(const QString &text, QString *error)
{
    std::optional<QVariantMap> layout;
    const QString reason = reasonNotAnObject(text, layout);
    if (error)
        *error = reason;
    if (!layout) {
        OSTLogging::logError(reason);
        return nullptr;
    }
    return fromLayout(*layout);
}

std::shared_ptr<const OSTScreenDocument> OSTScreenDocument::fromLayout(const QVariantMap &layout)
{
    return std::shared_ptr<const OSTScreenDocument>(new OSTScreenDocument(layout));
}

OSTScreenDocument::OSTScreenDocument(const QVariantMap &layout)
    : m_backdrop(std::make_shared<const OSTElementDescription>(OSTElementKind::Shape, QString(), layout))
{
    readCategories(layout);
    readGroups(layout);
    readLayoutEntries();
    readErrorMessage(layout);
    const QString style = ost_stringForKey(layout, OSTScreenVocabulary::statusBarStyleKey).value_or(QString());
    if (style == u"disabled"_s)
        m_statusBarStyle = StatusBarStyle::Hidden;
    else if (style == u"white"_s)
        m_statusBarStyle = StatusBarStyle::Light;
}

QList<std::shared_ptr<const OSTElementDescription>> OSTScreenDocument::elements(const QString &category) const
{
    return m_categories.value(category);
}

void OSTScreenDocument::readCategories(const QVariantMap &layout)
{
    for (const OSTElementCategory &category : OSTScreenVocabulary::categories()) {
        const QVariantMap entries = ost_dictionaryForKey(layout, category.name).value_or(QVariantMap());
        for (auto entry = entries.constBegin(); entry != entries.constEnd(); ++entry) {
            if (entry.value().metaType() != QMetaType::fromType<QVariantMap>()) {
                OSTLogging::logWarning(u"Ignoring \"%1\" in \"%2\": its properties are not an object."_s,
                                       entry.key(), category.name);
                continue;
            }
            const QVariantMap properties = entry.value().toMap();
            if (category.family == OSTElementFamily::SelectionGroup)
                m_selectionGroups.append(std::make_shared<const OSTSelectionGroupDescription>(entry.key(), properties));
            else
                m_categories[category.name].append(elementOf(category.family, entry.key(), properties));
        }
    }
}

void OSTScreenDocument::readGroups(const QVariantMap &layout)
{
    const QVariantMap groups = ost_dictionaryForKey(layout, u"groups"_s).value_or(QVariantMap());
    for (auto group = groups.constBegin(); group != groups.constEnd(); ++group) {
        const QVariantList listed =
            ost_arrayForKey(group.value().toMap(), OSTScreenVocabulary::groupMembersKey).value_or(QVariantList());
        QStringList members;
        QStringList viewKeys;
        for (const QVariant &member : listed) {
            if (member.metaType() == QMetaType::fromType<QString>())
                members.append(member.toString());
            viewKeys.append(member.toString());
        }
        m_groupedKeys.append(members);
        if (group.value().metaType() == QMetaType::fromType<QVariantMap>()) {
            m_groupMembers.insert(group.key(), members);
            m_groupViewKeys.insert(group.key(), viewKeys);
        }
    }
}

void OSTScreenDocument::readLayoutEntries()
{
    // Groups come last, each adopting its members as it is added: a member that only a later
    // group's key names is not laid out yet and stays where it is, as does one replaced later.
    for (const QString &name : OSTScreenVocabulary::layoutOrder()) {
        const qint64 defaultZLayer = OSTScreenVocabulary::category(name)->defaultZLayer.value_or(0);
        for (const auto &element : m_categories.value(name)) {
            m_layoutEntries.insert(element->key(), {element, element->frame().zLayer.value_or(defaultZLayer), {}});
            if (element->kind() == OSTElementKind::Group)
                adoptMembers(element->key());
        }
    }
}

void OSTScreenDocument::adoptMembers(const QString &groupKey)
{
    for (const QString &member : m_groupMembers.value(groupKey)) {
        if (const auto found = m_layoutEntries.find(member); found != m_layoutEntries.end())
            found->group = groupKey;
    }
}

void OSTScreenDocument::readErrorMessage(const QVariantMap &layout)
{
    const QString &key = OSTScreenVocabulary::errorMessageKey;
    for (const auto &label : m_categories.value(u"labels"_s)) {
        if (label->key() == key)
            m_errorMessage = std::static_pointer_cast<const OSTLabelDescription>(label);
    }
    if (!m_errorMessage)
        return;
    const QVariantMap animations =
        ost_dictionaryForKey(layout, OSTScreenVocabulary::animationsKey).value_or(QVariantMap());
    const QVariantMap targets = ost_dictionaryForKey(ost_dictionaryForKey(animations, u"error"_s).value_or(QVariantMap()),
                                                     u"targets"_s)
                                    .value_or(QVariantMap());
    const QVariantMap alternative = ost_dictionaryForKey(targets, key).value_or(QVariantMap());
    if (alternative.isEmpty()) {
        m_errorMessageWhileShowing = m_errorMessage;
        return;
    }
    // The label's own object is read again only to lay the alternative over it.
    const QVariantMap properties = layout.value(u"labels"_s).toMap().value(key).toMap();
    m_errorMessageWhileShowing =
        std::make_shared<const OSTLabelDescription>(key, ost_mergeIntoDictionary(alternative, properties));
}

} // namespace ostrel
