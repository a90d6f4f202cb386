#include "Tests/Hostile/HostileGame.hpp"

#include "Tests/Support/FileTools.hpp"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace Varnholt::TestSupport {

HostileGame::HostileGame()
    : Outside(Base + QStringLiteral("outside"))
{
    AddFiles();
    Content.Add({Program(), "#!/bin/sh\nexit 0\n", c_Executable | c_GameExecutable});
    for (char const* const name : {"AccountLogin.xml.origin", "AccountLogin.lua.origin"})
        Content.Add({QStringLiteral("Interface/GlueXMl/") + name, "{varnholt_autolog_login}"});
    // Names hold no "/" of their own: a command in one names its file by this.
    qputenv("PWNED", QFile::encodeName(Base + QStringLiteral("PWNED")));
}

HostileGame& HostileGame::AddEntry(QString const& p_Path, qint32 p_Flags, bool p_Streamed)
{
    Entries.push_back({p_Path, p_Flags, p_Streamed});
    return *this;
}

void HostileGame::PublishAll()
{
    Publish();
    QJsonObject manifest = Content.Manifest();
    QJsonObject content = manifest["content"].toObject();
    QString const platform = content.keys().first();
    QJsonArray base = content[platform].toArray();
    QJsonArray streamed = manifest["streamed_content"].toArray();
    for (std::size_t i = 0; i < Entries.size(); ++i) {
        Entry const& entry = Entries[i];
        QString const location = QStringLiteral("hostile/%1").arg(i);
        QByteArray const bytes = BytesOf(entry.Path);
        Server.Serve("/pelmora_app/" + location, bytes);
        QJsonObject const row{{"location", location},
                              {"path", entry.Path},
                              {"md5", SampleContent::Md5(bytes)},
                              {"flags", entry.Flags}};
        (entry.IsStreamed ? streamed : base) += row;
    }
    content[platform] = base;
    manifest["content"] = content;
    manifest["streamed_content"] = streamed;
    Server.Serve(Content.ManifestPath(), QJsonDocument(manifest).toJson());
}

void HostileGame::Begin()
{
    PublishAll();
    Outside.Watch();
    if (!Open())
        qFatal("the session does not open");
}

void HostileGame::Link(QString const& p_Path, QString const& p_Target) const
{
    QString const path = Path(p_Path);
    QFileInfo const old(path);
    if (old.isDir() && !old.isSymbolicLink())
        QDir(path).removeRecursively();
    else
        QFile::remove(path);
    QDir().mkpath(old.path());
    if (!QFile::link(p_Target, path))
        qFatal("cannot link %s", qPrintable(path));
}

QStringList HostileGame::Disturbances()
{
    QStringList const disturbances = Outside.Disturbances();
    Outside.Watch();
    return disturbances;
}

QStringList HostileGame::WrongEntries() const
{
    QStringList wrong;
    for (Entry const& entry : Entries)
        if (Read(entry.Path) != BytesOf(entry.Path))
            wrong += entry.Path;
    return wrong;
}

QString HostileGame::Play()
{
    Host::RunRequest request;
    request.Kind = RequestType::Play;
    request.Argument = QStringLiteral("account");
    request.Password = QStringLiteral("password");
    return Run(request);
}

QString HostileGame::Uninstall()
{
    Host::RunRequest request;
    request.Kind = RequestType::Uninstall;
    request.DeletesFiles = true;
    request.Confirmed = true;
    return Run(request);
}

bool HostileGame::WasFooled() const
{
    QString const name = QStringLiteral("PWNED");
    return QFile::exists(Base + name) || QFile::exists(Path(name)) ||
           QFile::exists(QCoreApplication::applicationDirPath() + '/' + name);
}

} // namespace Varnholt::TestSupport
