#pragma once

#include "Host/Gateway/FetchProblem.hpp"

#include <curl/curl.h>

#include <string>

namespace Varnholt::Gateway {

/// What libcurl's error means to a person. \param p_Text what libcurl says about it, may be empty
FetchProblem TransferProblem(CURL* p_Easy, CURLcode p_Code, std::string const& p_Url,
                             std::string const& p_Text);

/// A status that is none of success.
FetchProblem StatusProblem(int p_Status, std::string const& p_Url);

/// Whether a status is about the one file: another may be had from the same server.
bool IsOfTheFile(int p_Status);

} // namespace Varnholt::Gateway
