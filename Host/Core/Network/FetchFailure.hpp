#pragma once

#include "Host/Core/Failures/Failure.hpp"
#include "Host/Gateway/FetchProblem.hpp"

namespace Varnholt::Host {

/// A problem of the door as people are told it.
Failure ExplainFetch(Gateway::FetchProblem const& p_Problem);

/// What has happened, in words: "HTTP status 404", "connection refused".
QString CauseText(Gateway::FetchProblem const& p_Problem);

/// What the server gave is no version file, manifest or the like.
Failure DamagedDocument(QString const& p_Url);

/// The address of a problem, fit to be read.
QString UrlOf(Gateway::FetchProblem const& p_Problem);

} // namespace Varnholt::Host
