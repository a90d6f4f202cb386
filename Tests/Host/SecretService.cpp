#include "Tests/Host/SecretService.hpp"

#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestHost.hpp"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDirIterator>
#include <QProcessEnvironment>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

constexpr char const* c_Address = "DBUS_SESSION_BUS_ADDRESS";

void End(QProcess& p_Process)
{
    p_Process.kill();
    p_Process.waitForFinished();
}

} // namespace

SecretService::SecretService()
{
    StartBus();
    if (WhyNot.isEmpty())
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

void SecretService::StartBus()
{
    Bus.start(QStringLiteral("dbus-daemon"), {"--session", "--nofork", "--print-address"});
    while (!Bus.canReadLine() && WhyNot.isEmpty())
        if (!Bus.waitForReadyRead(TestHost::c_Timeout))
            WhyNot = QStringLiteral("no message bus: ") + Bus.errorString();
    Address.emplace(c_Address, Bus.readLine().trimmed());
}

void SecretService::StartStore()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (char const* const name : {"HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR", "XDG_CACHE_HOME"})
        environment.insert(QString::fromLatin1(name), Folder.path());
    Store.setProcessEnvironment(environment);
    Store.start(QStringLiteral("gnome-keyring-daemon"),
                {"--foreground", "--unlock", "--components=secrets"});
    // What unlocks the keyring that it makes.
    Store.write("of the keyring");
    Store.closeWriteChannel();
    QString const bus = QStringLiteral("of the secret store");
    bool isThere = false;
    bool const isDecided = QTest::qWaitFor(
        [&] {
            isThere = QDBusConnection::connectToBus(QString::fromLatin1(qgetenv(c_Address)), bus)
                          .interface()
                          ->isServiceRegistered(QStringLiteral("org.freedesktop.secrets"));
            return isThere || Store.state() == QProcess::NotRunning;
        },
        TestHost::c_Timeout);
    QDBusConnection::disconnectFromBus(bus);
    if (!isThere)
        WhyNot = QStringLiteral("no secret store: %1: %2")
                     .arg(isDecided ? Store.errorString() : QStringLiteral("no answer"),
                          QString::fromLocal8Bit(Store.readAllStandardError()));
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
