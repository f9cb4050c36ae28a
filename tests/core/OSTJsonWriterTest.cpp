// The direct JSON writer against Qt's own parser: whatever it accepts must parse back to the same
// value, and what JSON cannot carry must be refused without leaving half-written text behind.

#include "core/OSTJsonWriter.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

QVariantMap parsedBack(const QByteArray &json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << json.toStdString();
    return document.object().toVariantMap();
}

} // namespace

TEST(JsonWriter, WritesValuesThatParseBackUnchanged)
{
    const QVariantMap object{
        {u"text"_s, u"plain"_s},
        {u"escapes"_s, u"quote \" backslash \\ slash / newline \n tab \t bell \x07 nul "_s + QChar(0) + u"end"_s},
        {u"unicode"_s, u"é中𝄞 emoji 😀"_s},
        {u"true"_s, true},
        {u"false"_s, false},
        {u"int"_s, -42},
        {u"large"_s, qlonglong(9007199254740991)},
        {u"unsigned"_s, 4000000000u},
        {u"double"_s, 0.1},
        {u"tiny"_s, 1e-300},
        {u"null"_s, QVariant::fromValue(nullptr)},
        {u"list"_s, QVariantList{1, u"two"_s, QVariantMap{{u"three"_s, 3}}, QVariantList{}}},
        {u"strings"_s, QStringList{u"a"_s, u"b"_s}},
        {u"nested"_s, QVariantMap{{u"empty"_s, QVariantMap{}}}},
        {u"key with \"quotes\""_s, u""_s},
    };
    const std::optional<QByteArray> json = OSTJsonWriter::serialized(object);
    ASSERT_TRUE(json);
    EXPECT_EQ(parsedBack(*json), QJsonObject::fromVariantMap(object).toVariantMap());
    EXPECT_FALSE(json->contains('\n')) << "compact text";
}

TEST(JsonWriter, KeepsOutputValidUTF8ForLoneSurrogatesAndNonFiniteNumbers)
{
    const QString loneHigh = QString(QChar(0xd800)) + u"x"_s;
    const QString loneLow = QString(QChar(0xdc00));
    const std::optional<QByteArray> json = OSTJsonWriter::serialized(
        {{u"high"_s, loneHigh},
         {u"low"_s, loneLow},
         {u"nan"_s, std::nan("")},
         {u"infinity"_s, std::numeric_limits<double>::infinity()}});
    ASSERT_TRUE(json);
    const QVariantMap back = parsedBack(*json);
    EXPECT_EQ(back.value(u"high"_s).toString(), u"\uFFFDx"_s);
    EXPECT_EQ(back.value(u"low"_s).toString(), u"\uFFFD"_s);
    EXPECT_TRUE(back.value(u"nan"_s).isNull());
    EXPECT_TRUE(back.value(u"infinity"_s).isNull());
}

TEST(JsonWriter, RefusesWhatJSONCannotCarryAndLeavesTheBufferAsItWas)
{
    int local = 0;
    const QVariant refused[] = {
        QDateTime::currentDateTimeUtc(),
        QByteArray("data"),
        QVariant::fromValue(static_cast<void *>(&local)),
        QVariantList{1, QDateTime::currentDateTimeUtc()},
        QVariantMap{{u"deep"_s, QVariantMap{{u"pointer"_s, QVariant::fromValue(static_cast<void *>(&local))}}}},
    };
    for (const QVariant &value : refused) {
        EXPECT_FALSE(OSTJsonWriter::isJSONValue(value)) << value.typeName();
        QByteArray out = "[1,";
        EXPECT_FALSE(OSTJsonWriter::appendValue(out, value));
        EXPECT_EQ(out, "[1,");
        EXPECT_FALSE(OSTJsonWriter::serialized({{u"key"_s, value}}));
    }
}
