#pragma once

/// The statuses of HTTP that the gateway tells apart.
namespace Varnholt::Gateway::HttpStatus {

constexpr int c_Success = 200;
constexpr int c_PartialContent = 206;
constexpr int c_FirstError = 400;
constexpr int c_NotFound = 404;
constexpr int c_NotAllowed = 405;
constexpr int c_Timeout = 408;
constexpr int c_Gone = 410;
constexpr int c_RangeNotSatisfiable = 416;
constexpr int c_TooEarly = 425;
constexpr int c_TooManyRequests = 429;
constexpr int c_FirstServerError = 500;
constexpr int c_NotImplemented = 501;
constexpr int c_BadGateway = 502;
constexpr int c_Unavailable = 503;

} // namespace Varnholt::Gateway::HttpStatus
