#pragma once

#include "Host/Core/Jobs/MirrorReport.hpp"
#include "Host/Core/Network/NetworkDoor.hpp"

#include <QObject>

#include <string>
#include <vector>

namespace Varnholt::Host {

/// Asks each server of a build for its manifest and for a piece of a file, one after another, the
/// default server first. Module thread.
class MirrorCheck : public QObject {
    Q_OBJECT

public:
    /// \param p_Manifest its path, as the door has it
    /// \param p_File path of a file that is not empty; empty when there is none
    MirrorCheck(NetworkDoor& p_Door, std::string p_Manifest, std::string p_File);

    /// Answered by `Finished`, whatever the servers do.
    void Begin();
    /// The default server is the first.
    std::vector<MirrorReport> const& Reports() const { return Found; }

Q_SIGNALS:
    void Finished();

private:
    void AskNext();
    void OnManifest(Gateway::Reply const& p_Reply);
    void OnPiece(Gateway::Reply const& p_Reply);

    NetworkDoor& Door;
    std::string Manifest;
    std::string File;
    std::vector<std::string> Servers; ///< base addresses, one a host
    std::string Expected;             ///< the default server's manifest
    std::vector<MirrorReport> Found;
};

} // namespace Varnholt::Host
