#include "Tests/Faults/FaultRows.hpp"
#include "Tests/Faults/FaultTrial.hpp"
#include "Tests/Operating/Certificates.hpp"
#include "Tests/Operating/NginxServer.hpp"
#include "Tests/Support/FileTools.hpp"

namespace Varnholt::TestSupport {

namespace {

constexpr char c_Configuration[] = "server {\n"
                                   "listen 80 ssl;\n"
                                   "ssl_certificate CERTIFICATE;\n"
                                   "ssl_certificate_key KEY;\n"
                                   "root FOLDER/www;\n"
                                   "access_log FOLDER/log;\n"
                                   "}\n";

/// A game on servers that speak TLS, of which one is not to be trusted.
class TrustGame : public FaultGame {
public:
    TrustGame()
    {
        Publish();
        Write(Content.VersionPath(), "{\"build\":\"" + Content.Build.toUtf8() + "\"}");
        Write(Content.ManifestPath(), Content.ManifestBytes());
        Write(Content.RealmListPath(), Content.RealmList);
        Write(QStringLiteral("/cdns.info"), "");
        for (SampleFile const& file : Content.Files)
            Write(Content.ServerPath(file.Path), file.Bytes);
        Options.CaFile = Authority.AuthorityFile();
    }

    std::unique_ptr<NginxServer> Start(Certificates::Pair const& p_Pair) const
    {
        QString text = QString::fromLatin1(c_Configuration);
        text.replace("CERTIFICATE", p_Pair.Certificate).replace("KEY", p_Pair.Key);
        text.replace("FOLDER", Tls.path());
        if (!WriteFile(Tls.filePath("configuration"), text.toUtf8()))
            qFatal("the configuration cannot be written");
        return std::make_unique<NginxServer>(Tls.filePath("configuration"));
    }

    /// Whether a server has been given a request of the host's.
    bool WasAsked() const { return !ReadFile(Tls.filePath("log")).isEmpty(); }

    Certificates Authority;

private:
    void Write(QString const& p_Path, QByteArray const& p_Bytes) const
    {
        if (!WriteFile(Tls.filePath("www") + p_Path, p_Bytes))
            qFatal("%s cannot be written", qPrintable(p_Path));
    }

    QTemporaryDir Tls;
};

struct TrustFault {
    Certificates::Pair (Certificates::*Certificate)();
    QString Words; ///< about it
};

QString Https(WebServer const& p_Server)
{
    return QStringLiteral("https://%1/").arg(p_Server.Host());
}

/// The content server itself: nothing is taken from it, until it is in order.
void TryServer(TrustFault const& p_Fault, RequestType p_Kind, FaultTally& p_Tally)
{
    TrustGame game;
    if (p_Kind == RequestType::Update)
        FaultTrial::PutOld(game);
    auto const bad = game.Start((game.Authority.*p_Fault.Certificate)());
    game.Options.ContentUrl = Https(*bad);
    bool isLoaded = game.Begin();
    QString const end =
        p_Kind == RequestType::Install ? game.InstallWatched() : game.UpdateWatched();
    game.Expect(end, QStringLiteral("server-untrusted"),
                QStringLiteral("certificate not trusted: ") + p_Fault.Words);
    game.Expect(end, QStringLiteral("server-untrusted"), Https(*bad));
    if (game.WasAsked())
        game.Accuse(QStringLiteral("a server that is not trusted was asked for something"));
    game.Quit();
    auto const good = game.Start(game.Authority.Good());
    game.Options.ContentUrl = Https(*good);
    isLoaded = game.Begin() && isLoaded;
    if (!isLoaded)
        game.Accuse(QStringLiteral("the module does not load"));
    game.UpdateUntilDone();
    game.Quit();
    if (!game.WasAsked())
        game.Accuse(QStringLiteral("the server that is in order was not asked"));
    p_Tally.Add(QStringLiteral("content server"), 1, end + QStringLiteral(", then complete"), game);
}

/// One of the mirrors, or the only one: the others help out.
void TryMirror(TrustFault const& p_Fault, bool p_IsOnly, FaultTally& p_Tally)
{
    TrustGame game;
    auto const bad = game.Start((game.Authority.*p_Fault.Certificate)());
    QStringList mirrors(Https(*bad));
    if (!p_IsOnly)
        mirrors += game.Server.Host();
    game.Server.Serve(QStringLiteral("/cdns.info"), mirrors.join(' ').toUtf8());
    FaultTrial trial;
    trial.Where = QStringLiteral("mirror");
    trial.Kind = RequestType::Install;
    trial.End = QStringLiteral("done");
    trial.Run(game, p_Tally);
    if (game.WasAsked())
        p_Tally.Add(trial.Where, 0, QStringLiteral("asked"),
                    {QStringLiteral("a mirror that is not trusted was asked for something")});
}

FaultReport Run(TrustFault const& p_Fault)
{
    FaultTally tally;
    if (QByteArray(VARNHOLT_NGINX_FILE).endsWith("NOTFOUND"))
        return FaultReport::NotPossible(QStringLiteral("there is no nginx"));
    for (RequestType const kind : {RequestType::Install, RequestType::Update})
        TryServer(p_Fault, kind, tally);
    for (bool const isOnly : {true, false})
        TryMirror(p_Fault, isOnly, tally);
    return tally.Report();
}

} // namespace

std::vector<FaultRow> TrustFaults()
{
    return {{QStringLiteral("certificate expired"),
             [] {
                 return Run({&Certificates::Expired, QStringLiteral("certificate has expired")});
             }},
            {QStringLiteral("certificate self-signed"),
             [] {
                 return Run({&Certificates::SelfSigned, QStringLiteral("self")});
             }},
            {QStringLiteral("certificate of another name"), [] {
                 return Run({&Certificates::ForAnotherName,
                             QStringLiteral("it is of another host's name")});
             }}};
}

} // namespace Varnholt::TestSupport
