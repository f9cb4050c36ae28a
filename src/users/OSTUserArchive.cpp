#include "users/OSTUserArchive.h"

#include "core/OSTDictionaryHelpers.h"
#include "platform/OSTPropertyListArchive.h"

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

const QString userIDKey = u"userID"_s;
const QString nameKey = u"name"_s;
const QString propertiesKey = u"properties"_s;
const QString testsKey = u"activeABNTests"_s;
const QString variationKey = u"lastViewedVariation"_s;
const QString testNameKey = u"name"_s;
const QString testVariationKey = u"variation"_s;

void insertPresent(QVariantMap &dictionary, const QString &key, const std::optional<QString> &value)
{
    if (value)
        dictionary.insert(key, *value);
}

QList<OSTUserABNTest> testsOf(const QVariantList &stored)
{
    QList<OSTUserABNTest> tests;
    for (const QVariant &entry : stored) {
        const QVariantMap test = entry.toMap();
        const auto name = ost_stringForKey(test, testNameKey);
        const auto variation = ost_stringForKey(test, testVariationKey);
        if (name && variation)
            tests.append(OSTUserABNTest(*name, *variation));
    }
    return tests;
}

} // namespace

QByteArray OSTUserArchive::archive(const OSTUser &user)
{
    QVariantMap stored;
    insertPresent(stored, userIDKey, user.userID());
    insertPresent(stored, nameKey, user.name());
    stored.insert(propertiesKey, user.properties());
    QVariantList tests;
    for (const OSTUserABNTest &test : user.activeABNTests())
        tests.append(QVariantMap{{testNameKey, test.name()}, {testVariationKey, test.variation()}});
    stored.insert(testsKey, tests);
    insertPresent(stored, variationKey, user.lastViewedVariation());
    return OSTPropertyListArchive::archive(stored);
}

std::optional<OSTUser> OSTUserArchive::unarchive(const QByteArray &bytes)
{
    const std::optional<QVariant> value = OSTPropertyListArchive::unarchive(bytes);
    if (!value || value->typeId() != QMetaType::QVariantMap)
        return std::nullopt;
    const QVariantMap stored = value->toMap();
    OSTUser user;
    user.setUserID(ost_stringForKey(stored, userIDKey));
    user.setName(ost_stringForKey(stored, nameKey));
    user.setProperties(ost_dictionaryForKey(stored, propertiesKey).value_or(QVariantMap()));
    user.setActiveABNTests(testsOf(ost_arrayForKey(stored, testsKey).value_or(QVariantList())));
    user.setLastViewedVariation(ost_stringForKey(stored, variationKey));
    return user;
}

} // namespace ostrel
