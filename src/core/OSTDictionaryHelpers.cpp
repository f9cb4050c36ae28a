#include "core/OSTDictionaryHelpers.h"

#include <QLocale>

namespace ostrel {

namespace {

const QLocale &unitedStatesLocale()
{
    static const QLocale locale(QLocale::English, QLocale::UnitedStates);
    return locale;
}

} // namespace

std::optional<QVariantMap> ost_dictionaryForKey(const QVariantMap &dictionary, const QString &key)
{
    return ost_objectForKey<QVariantMap>(dictionary, key);
}

std::optional<QVariantList> ost_arrayForKey(const QVariantMap &dictionary, const QString &key)
{
    return ost_objectForKey<QVariantList>(dictionary, key);
}

std::optional<QString> ost_stringForKey(const QVariantMap &dictionary, const QString &key)
{
    return ost_objectForKey<QString>(dictionary, key);
}

bool ost_isNumber(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Double:
    case QMetaType::Float:
        return true;
    default:
        return false;
    }
}

std::optional<double> ost_numberFromString(const QString &text)
{
    bool ok = false;
    const double number = unitedStatesLocale().toDouble(text.trimmed(), &ok);
    if (!ok)
        return std::nullopt;
    return number;
}

std::optional<double> ost_numberForKey(const QVariantMap &dictionary, const QString &key)
{
    const auto found = dictionary.constFind(key);
    if (found == dictionary.constEnd())
        return std::nullopt;
    if (ost_isNumber(*found))
        return found->toDouble();
    if (found->typeId() == QMetaType::QString)
        return ost_numberFromString(found->toString());
    return std::nullopt;
}

QVariantMap ost_mergeIntoDictionary(const QVariantMap &receiver, const QVariantMap &other)
{
    if (other.isEmpty())
        return receiver;
    if (receiver.isEmpty())
        return other;

    QVariantMap merged = other;
    for (auto entry = receiver.constBegin(); entry != receiver.constEnd(); ++entry) {
        const auto existing = other.constFind(entry.key());
        const bool bothAreDictionaries = existing != other.constEnd()
            && existing->typeId() == QMetaType::QVariantMap
            && entry->typeId() == QMetaType::QVariantMap;
        merged.insert(entry.key(), bothAreDictionaries
                                       ? QVariant(ost_mergeIntoDictionary(entry->toMap(),
                                                                          existing->toMap()))
                                       : entry.value());
    }
    return merged;
}

void ost_safeSetObject(QVariantMap &dictionary, const QVariant &value, const QString &key)
{
    if (value.isValid())
        dictionary.insert(key, value);
}

bool ost_boolValue(const QString &text)
{
    qsizetype index = 0;
    while (index < text.size() && text.at(index).isSpace())
        ++index;
    if (index < text.size() && (text.at(index) == u'+' || text.at(index) == u'-'))
        ++index;
    while (index < text.size() && text.at(index) == u'0')
        ++index;
    if (index >= text.size())
        return false;
    const QChar first = text.at(index);
    return first == u'Y' || first == u'y' || first == u'T' || first == u't'
        || (first >= u'1' && first <= u'9');
}

QVariantMap ost_presentValuesForKeys(const QVariantMap &dictionary, const QStringList &keys)
{
    QVariantMap values;
    for (const QString &key : keys) {
        const QVariant value = dictionary.value(key);
        const bool isEmptyString = value.typeId() == QMetaType::QString && value.toString().isEmpty();
        if (value.isValid() && !value.isNull() && !isEmptyString)
            values.insert(key, value);
    }
    return values;
}

} // namespace ostrel
