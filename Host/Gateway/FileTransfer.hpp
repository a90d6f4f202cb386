#pragma once

#include "Host/Gateway/FetchProblem.hpp"
#include "Host/Gateway/FileContent.hpp"

#include <list>
#include <memory>
#include <optional>

namespace Varnholt::Gateway {

/// A transfer of content, or a question for a size, on its way. Guarded by its user.
struct FileTransfer {
    std::shared_ptr<FileContent> File;
    std::shared_ptr<Server> From;
    TransferLoop::Id Id = 0;
    std::uint64_t Run = 0; ///< 0: nobody wants it any more
    std::string Url;
    std::list<Span>::iterator Part;      ///< of a transfer of content
    std::uint64_t Begin = 0;             ///< where it began
    std::optional<FetchProblem> Problem; ///< seen in its headers
    bool IsHeadRequest = false;
    bool IsRefused = false; ///< this file by this server, not the server as a whole
    bool IsSettled = false; ///< its headers have said all
    int RetryAfter = 0;     ///< seconds
};

} // namespace Varnholt::Gateway
