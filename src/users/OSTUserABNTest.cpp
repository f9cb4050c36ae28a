#include <ostrel/OSTUserABNTest.h>

#include "core/OSTDictionaryHelpers.h"

using namespace Qt::StringLiterals;

namespace ostrel {

OSTUserABNTest::OSTUserABNTest(const QString &name, const QString &variation)
    : m_name(name), m_variation(variation)
{
}

std::optional<OSTUserABNTest> OSTUserABNTest::fromProperties(const QVariant &properties)
{
    if (properties.typeId() != QMetaType::QVariantMap)
        return std::nullopt;
    const QVariantMap fields = properties.toMap();
    return OSTUserABNTest(ost_stringForKey(fields, u"test_name"_s).value_or(QString()),
                          ost_stringForKey(fields, u"variation"_s).value_or(QString()));
}

} // namespace ostrel
