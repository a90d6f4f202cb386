#pragma once

#include "Tests/Support/Answer.hpp"
#include "Tests/Support/RecordedRequest.hpp"

#include <QByteArray>

#include <optional>

namespace Varnholt::TestSupport {

/// The bytes of one answer.
struct Response {
    QByteArray Head;  ///< status line and headers, with the empty line
    QByteArray Whole; ///< keeps the bytes that `Body` is a part of
    QByteArray Body;
    bool IsEndless = false; ///< the body is sent over and over

    /// \param p_File the file under the request's path, none: 404
    static Response Of(RecordedRequest const& p_Request, Answer const& p_Answer,
                       std::optional<QByteArray> const& p_File);
};

/// A gzip stream of the bytes.
QByteArray GzipOf(QByteArray const& p_Bytes);

} // namespace Varnholt::TestSupport
