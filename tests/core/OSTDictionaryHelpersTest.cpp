#include "core/OSTDictionaryHelpers.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

#include <optional>
#include <utility>
#include <vector>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

QVariantMap json(const char *text)
{
    return QJsonDocument::fromJson(QByteArray(text)).toVariant().toMap();
}

} // namespace

TEST(DictionaryHelpers, TypedReadsTreatWrongTypesAsAbsent)
{
    const QVariantMap values = json(R"({"s": "text", "n": 12, "d": {"k": 1}, "a": [1, 2],
                                        "numeric": "12", "b": true})");

    EXPECT_EQ(ost_stringForKey(values, u"s"_s), u"text"_s);
    EXPECT_FALSE(ost_stringForKey(values, u"n"_s)) << "numbers are not turned into strings";
    EXPECT_FALSE(ost_stringForKey(values, u"missing"_s));

    ASSERT_TRUE(ost_dictionaryForKey(values, u"d"_s));
    EXPECT_EQ(ost_dictionaryForKey(values, u"d"_s)->value(u"k"_s).toInt(), 1);
    EXPECT_FALSE(ost_dictionaryForKey(values, u"a"_s));

    ASSERT_TRUE(ost_arrayForKey(values, u"a"_s));
    EXPECT_EQ(ost_arrayForKey(values, u"a"_s)->size(), 2);
    EXPECT_FALSE(ost_arrayForKey(values, u"d"_s));

    EXPECT_EQ(ost_objectForKey<QString>(values, u"s"_s), u"text"_s);
    EXPECT_FALSE(ost_objectForKey<QVariantList>(values, u"s"_s));
}

TEST(DictionaryHelpers, NumbersKeepTheirTypeAndAcceptNumericStringsReadTheUnitedStatesWay)
{
    constexpr qlonglong beyondDoublePrecision = 9007199254740993LL; // 2^53 + 1
    const QVariantMap values{{u"int"_s, 12}, {u"double"_s, 2.5}, {u"string"_s, u"12"_s},
                             {u"grouped"_s, u"1,234.5"_s}, {u"european"_s, u"1.234,5"_s},
                             {u"word"_s, u"abc"_s}, {u"yes"_s, true}, {u"no"_s, false},
                             {u"list"_s, QVariantList{1}}, {u"empty"_s, u""_s},
                             {u"big"_s, beyondDoublePrecision}, {u"bigText"_s, u"9007199254740993"_s}};

    const std::vector<std::pair<QString, QVariant>> expected{
        {u"int"_s, 12}, {u"double"_s, 2.5}, {u"string"_s, 12LL}, {u"grouped"_s, 1234.5},
        {u"yes"_s, true}, {u"no"_s, false}, {u"big"_s, beyondDoublePrecision},
        {u"bigText"_s, beyondDoublePrecision}};
    for (const auto &[key, number] : expected) {
        const QVariant read = ost_numberForKey(values, key);
        EXPECT_EQ(read, number) << key.toStdString();
        EXPECT_EQ(read.metaType(), number.metaType()) << key.toStdString() << ": the value keeps its own type";
    }
    for (const QString &absent : {u"european"_s, u"word"_s, u"empty"_s, u"list"_s, u"missing"_s})
        EXPECT_FALSE(ost_numberForKey(values, absent).isValid()) << absent.toStdString();

    EXPECT_EQ(ost_numberForKey(values, u"big"_s).toLongLong() - 1, 9007199254740992LL) << "no digit lost";
    EXPECT_EQ(ost_finiteDouble(ost_numberFromString(u"inf"_s)), std::nullopt);
    EXPECT_EQ(ost_finiteDouble(ost_numberFromString(u"nan"_s)), std::nullopt);
    EXPECT_EQ(ost_finiteDouble(QVariant(u"3"_s)), std::nullopt) << "a string is not a number";
}

TEST(DictionaryHelpers, MergeLaysReceiverOverOtherToAnyDepth)
{
    EXPECT_EQ(ost_mergeIntoDictionary(json(R"({"a": {"x": 1}})"), json(R"({"a": {"y": 2}, "b": 3})")),
              json(R"({"a": {"x": 1, "y": 2}, "b": 3})"));
    EXPECT_EQ(ost_mergeIntoDictionary(json(R"({"a": 1})"), json(R"({"a": {"y": 2}})")),
              json(R"({"a": 1})"));
    EXPECT_EQ(ost_mergeIntoDictionary(json(R"({"a": {"b": {"c": 1}}})"),
                                      json(R"({"a": {"b": {"d": 2}, "e": [1]}})")),
              json(R"({"a": {"b": {"c": 1, "d": 2}, "e": [1]}})"));
    EXPECT_EQ(ost_mergeIntoDictionary(json(R"({"a": [1]})"), json(R"({"a": [2, 3]})")),
              json(R"({"a": [1]})")) << "arrays are replaced whole";

    const QVariantMap receiver = json(R"({"k": "v"})");
    EXPECT_EQ(ost_mergeIntoDictionary(receiver, {}), receiver);
    EXPECT_EQ(ost_mergeIntoDictionary({}, receiver), receiver);
}

TEST(DictionaryHelpers, SafeSetIgnoresNullValues)
{
    QVariantMap values{{u"k"_s, u"old"_s}};
    ost_safeSetObject(values, QVariant(), u"k"_s);
    EXPECT_EQ(values.value(u"k"_s), u"old"_s);
    ost_safeSetObject(values, u"new"_s, u"k"_s);
    EXPECT_EQ(values.value(u"k"_s), u"new"_s);
    ost_safeSetObject(values, 0, u"zero"_s);
    EXPECT_EQ(values.value(u"zero"_s), 0);
}

TEST(DictionaryHelpers, BooleanReadingOfText)
{
    for (const QString &yes : {u"YES"_s, u"yes"_s, u"true"_s, u"T"_s, u"1"_s, u"9"_s, u"  y"_s,
                               u"007"_s, u"-1"_s, u"Yikes"_s})
        EXPECT_TRUE(ost_boolValue(yes)) << yes.toStdString();
    for (const QString &no : {u""_s, u"NO"_s, u"false"_s, u"0"_s, u"000"_s, u"x"_s, u" "_s, u"-"_s})
        EXPECT_FALSE(ost_boolValue(no)) << no.toStdString();
}
