#pragma once

#include <QByteArray>
#include <QString>

#include <utility>
#include <vector>

namespace Varnholt::TestSupport {

/// One request as a scripted server has received it.
struct RecordedRequest {
    int Number = 0;          ///< order of arrival on this server, from 0
    qint64 Milliseconds = 0; ///< of arrival, since the server was started
    int Connection = 0;      ///< which connection it came on
    QByteArray Method;
    QByteArray Target; ///< as sent, percent-encoded
    QString Path;      ///< decoded, without a query
    std::vector<std::pair<QByteArray, QByteArray>> Headers;

    bool Has(QByteArray const& p_Name) const
    {
        for (auto const& header : Headers)
            if (header.first.toLower() == p_Name.toLower())
                return true;
        return false;
    }

    /// The header's value; null when there is none. Names are compared without letter case.
    QByteArray Header(QByteArray const& p_Name) const
    {
        for (auto const& header : Headers)
            if (header.first.toLower() == p_Name.toLower())
                return header.second;
        return {};
    }
};

} // namespace Varnholt::TestSupport
