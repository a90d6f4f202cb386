#pragma once

#include "Publisher/Tree/PublishedBuild.hpp"
#include "Publisher/Verification/RemoteServer.hpp"

namespace Varnholt::Publisher {

/// Asks a server for a content file as a client does.
class ServerFileCheck {
public:
    enum class Depth {
        Headers, ///< is it there, of which size
        Content, ///< every byte, then a range
    };

    /// \param p_Path behind the server's base address
    ServerFileCheck(RemoteServer& p_Server, QString const& p_Path, PublishedFile const& p_File);

    /// \param p_Size that it must have, -1 when that is not known
    /// \return what is wrong, null when nothing is
    QString Run(Depth p_Depth, qint64 p_Size);

    /// Size that the server gives, -1 when it gives none.
    qint64 Size() const { return Found; }
    bool IsAnswered() const { return Answered; }

private:
    QString CheckHeaders(RemoteAnswer const& p_Answer, qint64 p_Size);
    QString CheckWhole();
    QString CheckRange();

    RemoteServer& Server;
    QString const& Path;
    PublishedFile const& File;
    qint64 Found = -1;
    bool Answered = true;
    QByteArray End; ///< the file's last bytes
};

} // namespace Varnholt::Publisher
