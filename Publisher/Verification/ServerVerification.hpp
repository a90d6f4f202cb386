#pragma once

#include "Publisher/Signatures/DocumentCheck.hpp"
#include "Publisher/Tree/PublishedBuild.hpp"
#include "Publisher/Verification/VerificationSummary.hpp"

#include <QByteArray>
#include <QSet>

#include <map>
#include <mutex>
#include <vector>

namespace Varnholt::Publisher {

class RemoteServer;

/// Looks whether a server, and each mirror that it names, gives clients what its builds promise.
class ServerVerification {
public:
    struct Options {
        QString BaseUrl; ///< of the default server
        QString AppId;
        int Sample = 0; ///< so many files are read whole on each server; of the rest, headers
        bool ReadsAll = false;
        QList<Signing::PublicKey> Keys = {}; ///< none: signatures are not looked at
    };

    explicit ServerVerification(Options p_Options);

    /// \throws Failure when the address is none
    VerificationSummary Run();

private:
    QString PathOf(QString const& p_Location) const;
    void ReadBuilds(RemoteServer& p_Server);
    void ReadBuild(RemoteServer& p_Server, QString const& p_Build);
    QStringList ReadHosts(RemoteServer& p_Server);
    void CheckSignature(RemoteServer& p_Server, QString const& p_Path, QByteArray const& p_Content);
    void CheckRealmList(RemoteServer& p_Server);
    bool ComparesManifests(QString const& p_Server);
    void CheckFiles(QString const& p_Server, bool p_IsDefault);
    void CheckFile(RemoteServer& p_Server, QString const& p_Url, std::size_t p_Index,
                   QStringList& p_Problems);
    bool IsInSample(std::size_t p_Index) const;

    Options Asked;
    DocumentCheck Check;
    VerificationSummary Summary;
    std::map<QString, QByteArray> Manifests; ///< by build, as the default server gives them
    std::vector<PublishedFile> Files;        ///< each content once
    QSet<QString> Known;                     ///< what is in `Files`
    std::vector<qint64> Sizes;               ///< of `Files`, as the default server gives them
    std::mutex Mutex;                        ///< of `Summary` while files are checked
    int Silent = 0;                          ///< questions without an answer, of one server
};

} // namespace Varnholt::Publisher
