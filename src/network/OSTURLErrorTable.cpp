#include "network/OSTURLErrorTable.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

int codeForTransportError(QNetworkReply::NetworkError error)
{
    using E = QNetworkReply::NetworkError;
    static const QHash<E, int> table = {
        {E::ConnectionRefusedError, OSTURLErrorCannotConnectToHost},
        {E::RemoteHostClosedError, OSTURLErrorNetworkConnectionLost},
        {E::HostNotFoundError, OSTURLErrorCannotFindHost},
        {E::TimeoutError, OSTURLErrorTimedOut},
        {E::OperationCanceledError, OSTURLErrorCancelled},
        {E::SslHandshakeFailedError, OSTURLErrorSecureConnectionFailed},
        {E::TemporaryNetworkFailureError, OSTURLErrorNetworkConnectionLost},
        {E::NetworkSessionFailedError, OSTURLErrorNotConnectedToInternet},
        {E::BackgroundRequestNotAllowedError, OSTURLErrorDataNotAllowed},
        {E::TooManyRedirectsError, OSTURLErrorHTTPTooManyRedirects},
        {E::InsecureRedirectError, OSTURLErrorInsecureConnectionRequired},
        {E::ProxyConnectionRefusedError, OSTURLErrorCannotConnectToHost},
        {E::ProxyConnectionClosedError, OSTURLErrorNetworkConnectionLost},
        {E::ProxyNotFoundError, OSTURLErrorCannotFindHost},
        {E::ProxyTimeoutError, OSTURLErrorTimedOut},
        {E::ProxyAuthenticationRequiredError, OSTURLErrorUserAuthenticationRequired},
        {E::ProtocolUnknownError, OSTURLErrorUnsupportedURL},
        {E::ProtocolFailure, OSTURLErrorCannotParseResponse},
    };
    if (OSTURLErrorTable::isHTTPStatusError(error))
        return OSTURLErrorBadServerResponse;
    return table.value(error, OSTURLErrorUnknown);
}

} // namespace

bool OSTURLErrorTable::isHTTPStatusError(QNetworkReply::NetworkError error)
{
    using E = QNetworkReply::NetworkError;
    const bool contentError = error >= E::ContentAccessDenied && error <= E::UnknownContentError;
    const bool serverError = error >= E::InternalServerError && error <= E::UnknownServerError;
    return contentError || serverError || error == E::ProtocolInvalidOperationError;
}

std::optional<int> OSTURLErrorTable::codeForNetworkError(QNetworkReply::NetworkError error,
                                                         bool receivedStatus)
{
    if (error == QNetworkReply::NoError || (receivedStatus && isHTTPStatusError(error)))
        return std::nullopt;
    return codeForTransportError(error);
}

OSTError OSTURLErrorTable::errorWithCode(int code, const QString &message)
{
    return OSTError{NSURLErrorDomain, code, message};
}

OSTError OSTURLErrorTable::errorForHTTPStatus(int status)
{
    return errorWithCode(status, u"The service answered with HTTP status %1."_s.arg(status));
}

} // namespace ostrel
