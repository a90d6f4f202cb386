#pragma once

#include <QByteArray>
#include <QMetaType>

#include <optional>
#include <utility>
#include <vector>

namespace Varnholt::TestSupport {

/// What a scripted server does with one request. Built by one of the named functions and refined by
/// the modifiers: `Answer::Truncated(100).With("X-A", "1")`.
///
/// Byte counts are bytes of the body that this answer sends, after a range was applied. A body that
/// will be cut is sent when the client has read its headers, and an answer ends with its connection
/// when the client has read it all: one that gets everything in one piece reports a cut only most
/// of the time, and may ask again for what it has.
class Answer {
public:
    enum class End { KeepAlive, Close, Reset };
    static constexpr qint64 c_Everything = -1;

    /// The served file, whole or by range; 404 when there is none, 416 for a range behind its end.
    static Answer Normal() { return {}; }
    /// Any status with a page.
    static Answer Status(int p_Status, QByteArray const& p_Body = "<html>error page</html>");
    /// The served file's headers, a part of its body, then the end of the connection.
    static Answer Truncated(qint64 p_Bytes);
    /// As Truncated, but the connection is reset instead of closed.
    static Answer Reset(qint64 p_Bytes);
    /// No Content-Length, the connection's end ends the body.
    static Answer WithoutLength();
    /// Nothing is sent, the connection stays open; goes on when the gate is opened.
    static Answer SilentBeforeHeaders();
    /// Headers and a part of the body, then silence; goes on when the gate is opened.
    static Answer SilentAfter(qint64 p_Bytes);
    /// The body in small pieces.
    static Answer Drip(int p_PieceBytes, int p_PauseMilliseconds);
    /// 200 with the whole file, whatever range was asked for.
    static Answer IgnoringRange();
    /// 206 that starts p_Offset bytes away from where it was asked to start.
    static Answer WrongRangeStart(qint64 p_Offset);
    static Answer Redirect(QByteArray const& p_Location, int p_Status = 302);
    /// The body compressed, with Content-Encoding.
    static Answer Gzip();
    /// The whole body under another Content-Length; the connection closes behind it.
    static Answer ClaimingLength(qint64 p_Length);
    static Answer ClosedBeforeHeaders();
    /// 206 with this Content-Range, whatever is sent: "bytes 0-99/1000".
    static Answer ClaimingRange(QByteArray const& p_ContentRange);
    /// Headers without end, until the client has gone.
    static Answer EndlessHeaders();
    /// No Content-Length, and a body without end, until the client has gone.
    static Answer EndlessBody();

    /// Adds a header.
    Answer& With(QByteArray const& p_Name, QByteArray const& p_Value);
    /// Replaces the served file's bytes; ranges apply to it.
    Answer& Body(QByteArray const& p_Body);
    /// Waits for the path's gate before the headers.
    Answer& Held();
    /// Cuts the body after so many bytes.
    Answer& CutAfter(qint64 p_Bytes, End p_End = End::Close);

    int StatusCode = 0; ///< 0: as the file and the range have it
    std::optional<QByteArray> OwnBody;
    std::vector<std::pair<QByteArray, QByteArray>> ExtraHeaders;
    End AtEnd = End::KeepAlive;
    qint64 SentBytes = c_Everything; ///< of the body, before the end of the connection
    std::optional<qint64> HeldAfter; ///< bytes sent before the gate is waited for
    bool IsHeldBeforeHeaders = false;
    bool IsClosedBeforeHeaders = false;
    bool HasLength = true;
    std::optional<qint64> ClaimedLength;
    std::optional<QByteArray> ClaimedRange;
    bool HasEndlessHeaders = false;
    bool HasEndlessBody = false;
    bool IgnoresRange = false;
    qint64 RangeOffset = 0;
    bool IsGzip = false;
    int PieceBytes = 0; ///< 0: all at once
    int PauseMilliseconds = 0;
};

} // namespace Varnholt::TestSupport

Q_DECLARE_METATYPE(Varnholt::TestSupport::Answer)
