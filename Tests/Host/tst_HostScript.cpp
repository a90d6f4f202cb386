#include "Tests/Host/PlayedGame.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QtTest>

namespace Varnholt::TestSupport {

/// The host in the hands of a program that reads no words for people.
class HostScriptTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AScriptGetsAlongByJsonAndExitStatusesAlone();
};

void HostScriptTest::AScriptGetsAlongByJsonAndExitStatusesAlone()
{
    if (QStandardPaths::findExecutable("jq").isEmpty())
        QSKIP("the script reads JSON by jq, which is not installed");
    PlayedGame const game;
    QVERIFY(QDir(game.Folder).removeRecursively());
    QVERIFY(QFile::remove(game.SettingsFile));
    QProcessEnvironment environment = HostProcess::Environment(game);
    environment.insert("VARNHOLT_SETTINGS", game.SettingsFile);
    environment.insert("VARNHOLT_CONTENT_URL", game.Server.BaseUrl());
    QProcess script;
    script.setProcessEnvironment(environment);
    script.start(VARNHOLT_HOST_SCRIPT,
                 {HostProcess::Program(), QDir::cleanPath(game.Folder), game.Base});
    QVERIFY(script.waitForFinished(TestHost::c_Timeout));
    QVERIFY2(script.exitStatus() == QProcess::NormalExit && script.exitCode() == 0,
             script.readAllStandardError().constData());
    QCOMPARE(script.readAllStandardError(), QByteArray());
    QCOMPARE(game.Starts(), 1);
    QVERIFY(!game.Has("readme.txt"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostScriptTest)
#include "tst_HostScript.moc"
