#pragma once

namespace ostrel::devserver {

// The HTTP status codes the service answers with.
enum HttpStatus : int {
    httpOK = 200,
    httpBadRequest = 400,
    httpForbidden = 403,
    httpNotFound = 404,
    httpConflict = 409,
};

} // namespace ostrel::devserver
