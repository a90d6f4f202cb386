#include "Tests/Support/Answer.hpp"

namespace Varnholt::TestSupport {

Answer Answer::Status(int p_Status, QByteArray const& p_Body)
{
    Answer answer;
    answer.StatusCode = p_Status;
    answer.OwnBody = p_Body;
    return answer;
}

Answer Answer::Truncated(qint64 p_Bytes)
{
    return Answer().CutAfter(p_Bytes, End::Close);
}

Answer Answer::Reset(qint64 p_Bytes)
{
    return Answer().CutAfter(p_Bytes, End::Reset);
}

Answer Answer::WithoutLength()
{
    Answer answer;
    answer.HasLength = false;
    answer.AtEnd = End::Close;
    return answer;
}

Answer Answer::SilentBeforeHeaders()
{
    return Answer().Held();
}

Answer Answer::SilentAfter(qint64 p_Bytes)
{
    Answer answer;
    answer.HeldAfter = p_Bytes;
    return answer;
}

Answer Answer::Drip(int p_PieceBytes, int p_PauseMilliseconds)
{
    Answer answer;
    answer.PieceBytes = p_PieceBytes;
    answer.PauseMilliseconds = p_PauseMilliseconds;
    return answer;
}

Answer Answer::IgnoringRange()
{
    Answer answer;
    answer.IgnoresRange = true;
    return answer;
}

Answer Answer::WrongRangeStart(qint64 p_Offset)
{
    Answer answer;
    answer.RangeOffset = p_Offset;
    return answer;
}

Answer Answer::Redirect(QByteArray const& p_Location, int p_Status)
{
    return Status(p_Status, "moved").With("Location", p_Location);
}

Answer Answer::Gzip()
{
    Answer answer;
    answer.IsGzip = true;
    return answer;
}

Answer Answer::ClaimingLength(qint64 p_Length)
{
    Answer answer;
    answer.ClaimedLength = p_Length;
    return answer.CutAfter(c_Everything);
}

Answer Answer::ClosedBeforeHeaders()
{
    Answer answer;
    answer.IsClosedBeforeHeaders = true;
    return answer;
}

Answer Answer::ClaimingRange(QByteArray const& p_ContentRange)
{
    Answer answer;
    answer.ClaimedRange = p_ContentRange;
    return answer;
}

Answer Answer::EndlessHeaders()
{
    Answer answer;
    answer.HasEndlessHeaders = true;
    return answer;
}

Answer Answer::EndlessBody()
{
    Answer answer = WithoutLength();
    answer.HasEndlessBody = true;
    return answer;
}

Answer& Answer::With(QByteArray const& p_Name, QByteArray const& p_Value)
{
    ExtraHeaders.emplace_back(p_Name, p_Value);
    return *this;
}

Answer& Answer::Body(QByteArray const& p_Body)
{
    OwnBody = p_Body;
    return *this;
}

Answer& Answer::Held()
{
    IsHeldBeforeHeaders = true;
    return *this;
}

Answer& Answer::CutAfter(qint64 p_Bytes, End p_End)
{
    SentBytes = p_Bytes;
    AtEnd = p_End;
    return *this;
}

} // namespace Varnholt::TestSupport
