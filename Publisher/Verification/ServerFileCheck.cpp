#include "Publisher/Verification/ServerFileCheck.hpp"

#include <QCryptographicHash>

namespace Varnholt::Publisher {

namespace {

/// How much of a file's end is asked for again as a range.
constexpr int c_EndBytes = 64 * 1024;

} // namespace

ServerFileCheck::ServerFileCheck(RemoteServer& p_Server, QString const& p_Path,
                                 PublishedFile const& p_File)
    : Server(p_Server)
    , Path(p_Path)
    , File(p_File)
{
}

QString ServerFileCheck::Run(Depth p_Depth, qint64 p_Size)
{
    QString problem = CheckHeaders(Server.Head(Path), p_Size);
    if (problem.isNull() && p_Depth == Depth::Content)
        problem = CheckWhole();
    if (problem.isNull() && p_Depth == Depth::Content && Found > 1)
        problem = CheckRange();
    return problem;
}

QString ServerFileCheck::CheckHeaders(RemoteAnswer const& p_Answer, qint64 p_Size)
{
    Answered = p_Answer.Status != 0;
    QString problem = p_Answer.Problem(200);
    if (!problem.isEmpty())
        return problem;
    if (!p_Answer.Encoding.isEmpty() && p_Answer.Encoding != "identity") {
        return QStringLiteral("the server compresses it (%1), so that it cannot be resumed")
            .arg(QString::fromLatin1(p_Answer.Encoding));
    }
    if (p_Answer.Length < 0)
        return QStringLiteral("the server does not tell its size");
    Found = p_Answer.Length;
    if (p_Size >= 0 && Found != p_Size) {
        return QStringLiteral("the server gives %1 bytes, %2 are right")
            .arg(QString::number(Found), QString::number(p_Size));
    }
    return {};
}

QString ServerFileCheck::CheckWhole()
{
    QCryptographicHash hash(QCryptographicHash::Md5);
    qint64 bytes = 0;
    RemoteAnswer const answer =
        Server.Get(Path, QByteArray(), [&](char const* p_Data, std::size_t p_Bytes) {
            int const size = static_cast<int>(p_Bytes);
            hash.addData(p_Data, size);
            bytes += size;
            End = (End + QByteArray(p_Data, size)).right(c_EndBytes);
        });
    // Servers may compress a GET although they do not say so to a HEAD.
    QString problem = CheckHeaders(answer, bytes);
    if (!problem.isNull())
        return problem;
    QString const md5 = QString::fromLatin1(hash.result().toHex().toUpper());
    if (md5 != File.Md5)
        return QStringLiteral("the MD5 of its %1 bytes is %2").arg(QString::number(bytes), md5);
    return {};
}

QString ServerFileCheck::CheckRange()
{
    qint64 const offset = qMax(Found / 2, Found - End.size());
    QByteArray bytes;
    RemoteAnswer const answer = Server.Get(Path, "bytes=" + QByteArray::number(offset) + '-',
                                           [&bytes](char const* p_Data, std::size_t p_Bytes) {
                                               // Of a server that sends another part no more is
                                               // kept than is needed.
                                               if (bytes.size() <= c_EndBytes)
                                                   bytes.append(p_Data, static_cast<int>(p_Bytes));
                                           });
    QString const problem = answer.Problem(206);
    if (!problem.isEmpty())
        return problem + QStringLiteral(" to the range from byte %1").arg(offset);
    QByteArray const range = "bytes " + QByteArray::number(offset) + '-' +
                             QByteArray::number(Found - 1) + '/' + QByteArray::number(Found);
    if (answer.Range != range) {
        return QStringLiteral("the server says \"%1\" to the range from byte %2")
            .arg(QString::fromLatin1(answer.Range), QString::number(offset));
    }
    if (bytes != End.right(static_cast<int>(Found - offset)))
        return QStringLiteral("the server gives other bytes to the range from byte %1").arg(offset);
    return {};
}

} // namespace Varnholt::Publisher
