#include "Tests/Host/SecretService.hpp"

#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestHost.hpp"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDirIterator>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

QString const c_BusProgram = QStringLiteral("dbus-daemon");
QString const c_StoreProgram = QStringLiteral("gnome-keyring-daemon");

constexpr char const* c_Address = "DBUS_SESSION_BUS_ADDRESS";

void End(QProcess& p_Process)
{
    p_Process.kill();
    p_Process.waitForFinished();
}

} // namespace

bool SecretService::IsPossible()
{
    return !QStandardPaths::findExecutable(c_BusProgram).isEmpty() &&
           !QStandardPaths::findExecutable(c_StoreProgram).isEmpty();
}

SecretService::SecretService()
{
    Address.emplace(c_Address, StartBus());
    StartStore();
}

SecretService::~SecretService()
{
    Stop();
}

void SecretService::Stop()
{
    End(Store);
    End(Bus);
}

QByteArray SecretService::StartBus()
{
    Bus.start(c_BusProgram, {"--session", "--nofork", "--print-address"});
    while (!Bus.canReadLine())
        if (!Bus.waitForReadyRead(TestHost::c_Timeout))
            qFatal("there is no message bus: %s", Bus.readAllStandardError().constData());
    return Bus.readLine().trimmed();
}

void SecretService::StartStore()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (char const* const name : {"HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR", "XDG_CACHE_HOME"})
        environment.insert(QString::fromLatin1(name), Folder.path());
    Store.setProcessEnvironment(environment);
    Store.start(c_StoreProgram, {"--foreground", "--unlock", "--components=secrets"});
    // What unlocks the keyring that it makes.
    Store.write("of the keyring");
    Store.closeWriteChannel();
    QString const bus = QStringLiteral("of the secret store");
    bool const isThere = QTest::qWaitFor(
        [&] {
            return QDBusConnection::connectToBus(QString::fromLatin1(qgetenv(c_Address)), bus)
                .interface()
                ->isServiceRegistered(QStringLiteral("org.freedesktop.secrets"));
        },
        TestHost::c_Timeout);
    QDBusConnection::disconnectFromBus(bus);
    if (!isThere)
        qFatal("there is no secret store: %s", Store.readAllStandardError().constData());
}

QByteArray SecretService::BytesOnDisk() const
{
    QByteArray bytes;
    QDirIterator files(Folder.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext())
        bytes += ReadFile(files.next());
    return bytes;
}

} // namespace Varnholt::TestSupport
