#include "core/OSTLogging.h"
#include "network/OSTResponseDecoder.h"
#include "network/OSTURLErrorTable.h"
#include "support/OSTTestSupport.h"

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

TEST(ResponseDecoder, ObjectsArriveWithoutNullsAtAnyDepth)
{
    const auto decoded = OSTResponseDecoder::dictionaryFromBody(
        u"launch_v3"_s, QByteArray(R"({"a": null, "b": [null, {"c": null}], "d": {"e": [1, null, [null, "x"]], "f": true}})"),
        std::nullopt);
    ASSERT_TRUE(decoded.value);
    EXPECT_FALSE(decoded.error);
    const QVariantMap expected{{u"b"_s, QVariantList{QVariantMap()}},
                               {u"d"_s, QVariantMap{{u"e"_s, QVariantList{1, QVariantList{u"x"_s}}}, {u"f"_s, true}}}};
    EXPECT_EQ(*decoded.value, expected);
    EXPECT_EQ(decoded.value->value(u"d"_s).toMap().value(u"f"_s).metaType(), QMetaType::fromType<bool>());
}

TEST(ResponseDecoder, AnythingButAnObjectIsAParseFailure)
{
    OSTLogging::setLoggingLevel(4);
    for (const QByteArray &body : {QByteArray("[1, 2]"), QByteArray("\"text\""), QByteArray("{\"a\": "),
                                   QByteArray("\xff\xfe")}) {
        OSTResponseDecoder::Result<QVariantMap> decoded;
        const QString log = test::captureStandardError(
            [&] { decoded = OSTResponseDecoder::dictionaryFromBody(u"event"_s, body, std::nullopt); });
        EXPECT_FALSE(decoded.value) << body.toStdString();
        ASSERT_TRUE(decoded.error);
        EXPECT_EQ(decoded.error->code, OSTURLErrorCannotParseResponse);
        EXPECT_EQ(log, u"Ostrel Debug: Failed to parse response for endpoint: event\n"_s);
    }
    // Without a body the incoming error is passed on as it is.
    const auto withoutBody =
        OSTResponseDecoder::dictionaryFromBody(u"event"_s, std::nullopt, OSTError{NSURLErrorDomain, -1234, u"earlier"_s});
    ASSERT_TRUE(withoutBody.error);
    EXPECT_EQ(withoutBody.error->code, -1234);
}

TEST(ResponseDecoder, TheStringFormNeedsUTF8AndPassesTheIncomingErrorOn)
{
    const auto text = OSTResponseDecoder::stringFromBody(u"event"_s, QByteArray("OK \xe2\x9c\x93"), std::nullopt);
    EXPECT_EQ(text.value, u"OK \u2713"_s);
    EXPECT_FALSE(text.error);

    const auto invalid = OSTResponseDecoder::stringFromBody(u"event"_s, QByteArray("\xc3\x28"), std::nullopt);
    EXPECT_FALSE(invalid.value);
    ASSERT_TRUE(invalid.error);
    EXPECT_EQ(invalid.error->code, OSTURLErrorCannotDecodeContentData);

    const auto refused =
        OSTResponseDecoder::stringFromBody(u"event"_s, std::nullopt, OSTError{NSURLErrorDomain, 401, u"refused"_s});
    EXPECT_FALSE(refused.value);
    ASSERT_TRUE(refused.error);
    EXPECT_EQ(refused.error->code, 401);
}
