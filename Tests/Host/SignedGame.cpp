#include "Tests/Host/SignedGame.hpp"

#include "Host/Core/Trust/TrustJudge.hpp"
#include "Tests/Host/PlayedGame.hpp"

namespace Varnholt::TestSupport {

QString const SignedGame::c_Program = QStringLiteral("Game.app/Game");
QString const SignedGame::c_Config = QStringLiteral("WTF/Config.wtf");

namespace {

Signing::TrustedComment CommentOf(SampleContent const& p_Content)
{
    constexpr quint64 c_Sequence = 5;

    Signing::TrustedComment comment;
    comment.Game = p_Content.AppId;
    comment.Platform = Host::TrustJudge::Platform();
    comment.Channel = QStringLiteral("live");
    comment.Sequence = c_Sequence;
    return comment;
}

} // namespace

Signer::Signer(Signing::TrustedComment const& p_Comment)
    : Comment(p_Comment)
{
}

QByteArray Signer::SignatureOf(QByteArray const& p_Bytes, Role p_Role, QString const& p_Build) const
{
    Signing::TrustedComment comment = Comment;
    comment.Document = p_Role;
    comment.Build = p_Build;
    comment.Time = QDateTime::currentDateTimeUtc();
    return Signing::Sign(p_Bytes, Secret, comment);
}

void Signer::Serve(ScriptedServer& p_Server, QString const& p_Path, QByteArray const& p_Bytes,
                   Role p_Role, QString const& p_Build) const
{
    p_Server.Serve(p_Path, p_Bytes);
    p_Server.Serve(p_Path + ".minisig", SignatureOf(p_Bytes, p_Role, p_Build));
}

void Signer::Publish(SampleContent const& p_Content, ScriptedServer& p_Server,
                     QByteArray const& p_Hosts) const
{
    p_Content.Publish(p_Server);
    QString const& build = p_Content.Build;
    Serve(p_Server, p_Content.VersionPath(), "{\"build\":\"" + build.toUtf8() + "\"}",
          Role::Version, build);
    Serve(p_Server, p_Content.ManifestPath(), p_Content.ManifestBytes(), Role::Manifest, build);
    Serve(p_Server, p_Content.RealmListPath(), p_Content.RealmList, Role::RealmList);
    Serve(p_Server, QStringLiteral("/cdns.info"),
          p_Hosts.isEmpty() ? p_Server.Host().toLatin1() : p_Hosts, Role::Hosts);
}

SignedGame::SignedGame()
    : Publisher(CommentOf(Content))
{
    AddFiles();
    Content.Add({c_Program, ProgramText("good"), PlayedGame::c_ExecutableFlags});
    PublishSigned();
    Options.TrustKey = Publisher.Key();
    Options.WatchMilliseconds = 10; // its program ends at once
}

void SignedGame::PublishSigned()
{
    Publisher.Publish(Content, Server);
}

QByteArray SignedGame::ProgramText(QByteArray const& p_Word)
{
    return "#!/bin/sh\necho " + p_Word + " >>\"$0.starts\"\n";
}

QByteArray SignedGame::Starts() const
{
    return Read(c_Program + ".starts");
}

QMap<QString, QByteArray> SignedGame::Files() const
{
    QMap<QString, QByteArray> files;
    for (QString const& name : FilesOnDisk())
        files[name] = Read(name);
    return files;
}

} // namespace Varnholt::TestSupport
