#include <ostrel/OSTUserABNTest.h>

#include "core/OSTDictionaryHelpers.h"

using namespace Qt::StringLiterals;

namespace ostrel {

OSTUserABNTest::OSTUserABNTest(const QString &name, const QString &variation)
    : m_name(name), m_variation(variation)
{
}

std::optional<OSTUserABNTest> OSTUserABNTest::fromProperties(const QVariantMap &properties)
{
    const auto name = ost_stringForKey(properties, u"test_name"_s);
    const auto variation = ost_stringForKey(properties, u"variation"_s);
    if (!name || !variation)
        return std::nullopt;
    return OSTUserABNTest(*name, *variation);
}

} // namespace ostrel
