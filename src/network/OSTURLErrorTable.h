#pragma once

#include <ostrel/OSTError.h>

#include <QNetworkReply>

#include <optional>

namespace ostrel {

// Codes of NSURLErrorDomain that the SDK reports, with their conventional numbers, so that the
// launch sequence and the host can test for them whatever the transport said.
enum OSTURLErrorCode : int {
    OSTURLErrorUnknown = -1,
    OSTURLErrorCancelled = -999,
    OSTURLErrorBadURL = -1000,
    OSTURLErrorTimedOut = -1001,
    OSTURLErrorUnsupportedURL = -1002,
    OSTURLErrorCannotFindHost = -1003,
    OSTURLErrorCannotConnectToHost = -1004,
    OSTURLErrorNetworkConnectionLost = -1005,
    OSTURLErrorDNSLookupFailed = -1006,
    OSTURLErrorHTTPTooManyRedirects = -1007,
    OSTURLErrorResourceUnavailable = -1008,
    OSTURLErrorNotConnectedToInternet = -1009,
    OSTURLErrorBadServerResponse = -1011,
    OSTURLErrorUserAuthenticationRequired = -1013,
    OSTURLErrorZeroByteResource = -1014,
    OSTURLErrorCannotDecodeContentData = -1016,
    OSTURLErrorCannotParseResponse = -1017,
    OSTURLErrorDataNotAllowed = -1020,
    OSTURLErrorInsecureConnectionRequired = -1022,
    OSTURLErrorDataLengthExceedsMaximum = -1103,
    OSTURLErrorSecureConnectionFailed = -1200,
    OSTURLErrorServerCertificateUntrusted = -1202,
};

// Qt's network errors in NSURLErrorDomain terms.
//
//   QNetworkReply::NetworkError                  NSURLErrorDomain code
//   ConnectionRefusedError                       -1004 cannot connect to host
//   RemoteHostClosedError                        -1005 network connection lost
//   HostNotFoundError                            -1003 cannot find host
//   TimeoutError                                 -1001 timed out
//   OperationCanceledError                        -999 cancelled
//   SslHandshakeFailedError                      -1200 secure connection failed
//                                                (-1202 when the peer's certificate is refused)
//   TemporaryNetworkFailureError                 -1005 network connection lost
//   NetworkSessionFailedError                    -1009 not connected to the internet
//   BackgroundRequestNotAllowedError             -1020 data not allowed
//   TooManyRedirectsError                        -1007 too many redirects
//   InsecureRedirectError                        -1022 secure connection required
//   ProxyConnectionRefusedError                  -1004
//   ProxyConnectionClosedError                   -1005
//   ProxyNotFoundError                           -1003
//   ProxyTimeoutError                            -1001
//   ProxyAuthenticationRequiredError             -1013 user authentication required
//   ProtocolUnknownError                         -1002 unsupported URL
//   ProtocolFailure                              -1017 cannot parse response
//   HTTP status errors (content 2xx, server 4xx, ProtocolInvalidOperationError for 400)
//                                                none when a status line arrived: the status
//                                                itself is the error; else -1011 bad response
//   anything else (UnknownNetworkError, ...)     -1 unknown
class OSTURLErrorTable {
public:
    OSTURLErrorTable() = delete;

    // The code for a transport error, or nothing for NoError and for errors that only restate
    // an HTTP status that was received (`receivedStatus`).
    static std::optional<int> codeForNetworkError(QNetworkReply::NetworkError error,
                                                  bool receivedStatus);
    // Whether Qt derived `error` from the HTTP status rather than from the transport.
    static bool isHTTPStatusError(QNetworkReply::NetworkError error);

    static OSTError errorWithCode(int code, const QString &message);
    // The error for an HTTP status: NSURLErrorDomain with the status as the code.
    static OSTError errorForHTTPStatus(int status);
};

} // namespace ostrel
