#include "Host/Window/Desktop/SingleInstance.hpp"

#include "Host/Core/Settings/SettingsFile.hpp"

#include <QCryptographicHash>
#include <QDir>
#include <QLocalSocket>
#include <QStandardPaths>

namespace Varnholt::Host {

namespace {

constexpr char c_Show[] = "show\n";

/// In a folder that is the user's alone; short, as the name of a socket has to be.
QString NameFor(QString const& p_SettingsFile)
{
    constexpr int c_Digits = 16;

    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty())
        folder = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    QDir().mkpath(folder);
    QByteArray const digest = QCryptographicHash::hash(
        SettingsFile::Canonical(p_SettingsFile).toUtf8(), QCryptographicHash::Sha256);
    return QDir(folder).filePath(QStringLiteral("varnholt-window-%1")
                                     .arg(QString::fromLatin1(digest.toHex().left(c_Digits))));
}

} // namespace

SingleInstance::SingleInstance(QString const& p_SettingsFile, QObject* p_Parent)
    : QObject(p_Parent)
    , Name(NameFor(p_SettingsFile))
    , Lock(Name + QStringLiteral(".lock"))
    , Server(this)
{
    Server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&Server, &QLocalServer::newConnection, this, &SingleInstance::OnConnection);
}

SingleInstance::Outcome SingleInstance::Begin()
{
    constexpr int c_Attempts = 20; // the first one may have the lock and not listen yet
    constexpr int c_Milliseconds = 100;

    for (int i = 0; i < c_Attempts; ++i) {
        switch (Lock.Take(c_Milliseconds)) {
        case FileLock::Outcome::Taken:
            QLocalServer::removeServer(Name); // what a program that was killed has left behind
            return Server.listen(Name) ? Outcome::First : Outcome::Unsure;
        case FileLock::Outcome::Held:
            if (AskFirst())
                return Outcome::Second;
            break;
        case FileLock::Outcome::Failed:
            return Outcome::Unsure;
        }
    }
    return Outcome::Unsure;
}

bool SingleInstance::AskFirst() const
{
    constexpr int c_Milliseconds = 2'000;

    QLocalSocket first;
    first.connectToServer(Name);
    if (!first.waitForConnected(c_Milliseconds))
        return false;
    first.write(c_Show);
    return first.waitForBytesWritten(c_Milliseconds);
}

void SingleInstance::OnConnection()
{
    while (QLocalSocket* const second = Server.nextPendingConnection()) {
        second->setReadBufferSize(sizeof(c_Show));
        connect(second, &QLocalSocket::disconnected, second, &QObject::deleteLater);
        auto const read = [this, second] {
            if (second->readAll() == c_Show)
                Q_EMIT ShowRequested();
        };
        connect(second, &QLocalSocket::readyRead, this, read);
        if (second->bytesAvailable() > 0)
            read();
    }
}

} // namespace Varnholt::Host
