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
    const OSTError incoming{NSURLErrorDomain, -1234, u"earlier"_s};
    const std::vector<std::pair<QByteArray, int>> bodies = {
        {"[1, 2]", OSTURLErrorCannotParseResponse},
        {"\"text\"", OSTURLErrorCannotParseResponse},
        {"{\"a\": ", OSTURLErrorCannotParseResponse},
        {"\xff\xfe", OSTURLErrorCannotParseResponse},
    };
    for (const auto &[body, code] : bodies) {
        OSTResponseDecoder::Result<QVariantMap> decoded;
        const QString log = test::captureStandardError(
            [&] { decoded = OSTResponseDecoder::dictionaryFromBody(u"event"_s, body, std::nullopt); });
        EXPECT_FALSE(decoded.value) << body.toStdString();
        ASSERT_TRUE(decoded.error);
        EXPECT_EQ(decoded.error->code, code);
        EXPECT_EQ(log, u"Ostrel Debug: Failed to parse response for endpoint: event\n"_s);
    }
    // Without a body the incoming error is passed on as it is.
    const auto withoutBody = OSTResponseDecoder::dictionaryFromBody(u"event"_s, std::nullopt, incoming);
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

    const OSTError incoming{NSURLErrorDomain, 401, u"refused"_s};
    const auto refused = OSTResponseDecoder::stringFromBody(u"event"_s, std::nullopt, incoming);
    EXPECT_FALSE(refused.value);
    ASSERT_TRUE(refused.error);
    EXPECT_EQ(refused.error->code, 401);
}

TEST(URLErrorTable, TransportErrorsMapOntoTheCodesTheLaunchSequenceTests)
{
    using E = QNetworkReply::NetworkError;
    const std::vector<std::pair<E, int>> table = {
        {E::ConnectionRefusedError, -1004}, {E::RemoteHostClosedError, -1005}, {E::HostNotFoundError, -1003},
        {E::TimeoutError, -1001},           {E::OperationCanceledError, -999}, {E::SslHandshakeFailedError, -1200},
        {E::NetworkSessionFailedError, -1009}, {E::TemporaryNetworkFailureError, -1005},
        {E::TooManyRedirectsError, -1007},  {E::ProxyNotFoundError, -1003},    {E::ProtocolUnknownError, -1002},
        {E::ProtocolFailure, -1017},        {E::UnknownNetworkError, -1},
    };
    for (const auto &[error, code] : table) {
        EXPECT_EQ(OSTURLErrorTable::codeForNetworkError(error, false), code) << error;
        EXPECT_EQ(OSTURLErrorTable::codeForNetworkError(error, true), code) << error;
    }
    // Errors that only restate a received HTTP status are not transport errors.
    for (const E statusError : {E::ContentNotFoundError, E::AuthenticationRequiredError, E::InternalServerError,
                                E::ProtocolInvalidOperationError, E::ServiceUnavailableError}) {
        EXPECT_EQ(OSTURLErrorTable::codeForNetworkError(statusError, true), std::nullopt) << statusError;
        EXPECT_EQ(OSTURLErrorTable::codeForNetworkError(statusError, false), OSTURLErrorBadServerResponse);
    }
    EXPECT_EQ(OSTURLErrorTable::codeForNetworkError(E::NoError, false), std::nullopt);
    EXPECT_TRUE(OSTURLErrorTable::errorForHTTPStatus(401).is(NSURLErrorDomain, 401));
}
