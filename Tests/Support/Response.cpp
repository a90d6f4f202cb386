#include "Tests/Support/Response.hpp"

#include <QList>
#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace Varnholt::TestSupport {

namespace {

using Headers = std::vector<std::pair<QByteArray, QByteArray>>;

QByteArray ReasonOf(int p_Status)
{
    switch (p_Status) {
    case 200:
        return "OK";
    case 206:
        return "Partial Content";
    case 404:
        return "Not Found";
    case 416:
        return "Range Not Satisfiable";
    default:
        return "Scripted";
    }
}

quint32 Crc32Of(QByteArray const& p_Bytes)
{
    quint32 crc = 0xFFFFFFFFu;
    for (char const byte : p_Bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320u : 0u);
    }
    return ~crc;
}

QByteArray LittleEndian(quint32 p_Number)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(p_Number, bytes.data());
    return bytes;
}

/// First and last byte asked for by "bytes=N-" or "bytes=N-M", the last one cut at the end.
std::optional<std::pair<qint64, qint64>> RangeOf(RecordedRequest const& p_Request, qint64 p_Size)
{
    QByteArray const range = p_Request.Header("Range");
    if (!range.startsWith("bytes="))
        return {};
    QList<QByteArray> const ends = range.mid(6).split('-');
    if (ends.size() != 2 || ends[0].isEmpty())
        return {};
    qint64 const last = ends[1].isEmpty() ? p_Size - 1 : ends[1].toLongLong();
    return std::make_pair(ends[0].toLongLong(), std::min(last, p_Size - 1));
}

/// Cuts the body to the range that was asked for and returns the status.
int ApplyRange(RecordedRequest const& p_Request, Answer const& p_Answer, QByteArray& p_Body,
               Headers& p_Headers)
{
    qint64 const size = p_Body.size();
    auto const range = RangeOf(p_Request, size);
    if (!range || p_Answer.IgnoresRange)
        return 200;
    if (range->first >= size) {
        p_Headers.emplace_back("Content-Range", "bytes */" + QByteArray::number(size));
        p_Body = "<html>range not satisfiable</html>";
        return 416;
    }
    qint64 const first = std::max<qint64>(range->first + p_Answer.RangeOffset, 0);
    p_Headers.emplace_back("Content-Range",
                           p_Answer.ClaimedRange.value_or("bytes " + QByteArray::number(first) +
                                                          '-' + QByteArray::number(range->second) +
                                                          '/' + QByteArray::number(size)));
    // No copy: files may be large, and the tests look at memory.
    qint64 const bytes = std::max<qint64>(range->second - first + 1, 0);
    p_Body = QByteArray::fromRawData(p_Body.constData() + first, static_cast<int>(bytes));
    return 206;
}

/// The same line for ever, where a client waits for the end of the headers.
Response EndlessHeaders()
{
    Response response;
    response.Head = "HTTP/1.1 200 OK\r\n";
    response.Body = "X-Filler: " + QByteArray(1000, 'x') + "\r\n";
    response.IsEndless = true;
    return response;
}

} // namespace

QByteArray GzipOf(QByteArray const& p_Bytes)
{
    // qCompress() puts four bytes of length before a zlib stream of two bytes of header and four of
    // checksum around the deflated data.
    QByteArray const zlib = qCompress(p_Bytes).mid(4);
    return QByteArray("\x1f\x8b\x08\0\0\0\0\0\0\x03", 10) + zlib.mid(2, zlib.size() - 6) +
           LittleEndian(Crc32Of(p_Bytes)) + LittleEndian(static_cast<quint32>(p_Bytes.size()));
}

Response Response::Of(RecordedRequest const& p_Request, Answer const& p_Answer,
                      std::optional<QByteArray> const& p_File)
{
    if (p_Answer.HasEndlessHeaders)
        return EndlessHeaders();
    Response response;
    Headers headers;
    QByteArray body;
    int status = p_Answer.StatusCode;
    if (status != 0) {
        body = p_Answer.OwnBody.value_or(QByteArray());
    } else if (p_Answer.OwnBody || p_File) {
        response.Whole = body = p_Answer.OwnBody ? *p_Answer.OwnBody : *p_File;
        status = ApplyRange(p_Request, p_Answer, body, headers);
    } else {
        body = "<html>not found</html>";
        status = 404;
    }
    if (p_Answer.IsGzip) {
        body = GzipOf(body);
        headers.emplace_back("Content-Encoding", "gzip");
    }
    if (p_Answer.HasLength)
        headers.emplace_back("Content-Length",
                             QByteArray::number(p_Answer.ClaimedLength.value_or(body.size())));
    headers.emplace_back("Connection",
                         p_Answer.AtEnd == Answer::End::KeepAlive ? "keep-alive" : "close");
    headers.insert(headers.end(), p_Answer.ExtraHeaders.begin(), p_Answer.ExtraHeaders.end());

    if (p_Request.Method != "HEAD")
        response.Body = body;
    response.IsEndless = p_Answer.HasEndlessBody && !response.Body.isEmpty();
    response.Head = "HTTP/1.1 " + QByteArray::number(status) + ' ' + ReasonOf(status) + "\r\n";
    for (auto const& header : headers)
        response.Head += header.first + ": " + header.second + "\r\n";
    response.Head += "\r\n";
    return response;
}

} // namespace Varnholt::TestSupport
