#include "Tests/Host/HostProcess.hpp"
#include "Tests/Host/PlayedGame.hpp"
#include "Tests/Pages/ToolRun.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

/// The examples and a program of a few lines, built as strangers build: against an installation,
/// which has been moved.
class ExamplesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void TheExampleHostInstallsTheExampleGame();
    void AProgramOverTheHostsLibraryLoadsTheExampleModule();
    void TheInstalledHostShowsBothGamesAndServesTheSecond();

private:
    QString Built(QString const& p_File) const { return Root.filePath("build/" + p_File); }
    QString Installed(QString const& p_File) const { return Root.filePath("prefix/" + p_File); }
    QString Module() const { return Installed(VARNHOLT_MODULE_FOLDER "/libLantern.so"); }

    QTemporaryDir Root;
};

namespace {

/// The invented game on a server.
class LanternGame : public HostGame {
public:
    LanternGame()
    {
        Content.AppId = "lantern_app";
        AddFiles();
        Content.Add({"Lantern", "#!/bin/sh\n", PlayedGame::c_ExecutableFlags});
        Publish();
    }
};

} // namespace

void ExamplesTest::initTestCase()
{
    QString const build = Root.filePath("build");
    QStringList const commands[] = {
        {"--install", VARNHOLT_BUILD_FOLDER, "--prefix", Root.filePath("first")},
        {"-E", "rename", Root.filePath("first"), Root.filePath("prefix")},
        {"-S", VARNHOLT_OUTSIDE_FOLDER, "-B", build, "-G", VARNHOLT_GENERATOR,
         "-DCMAKE_CXX_COMPILER=" VARNHOLT_COMPILER, "-DCMAKE_BUILD_TYPE=Debug",
         "-DEXAMPLES=" + Installed(VARNHOLT_DOCUMENTS_FOLDER "/examples"),
         "-DCMAKE_PREFIX_PATH=" + Root.filePath("prefix")},
        {"--build", build, "--target", "Lantern"},
        {"--build", build, "--target", "example-host"},
        {"--build", build, "--target", "embedding"},
        {"--install", build, "--prefix", Root.filePath("prefix")},
    };
    for (QStringList const& command : commands) {
        ToolRun const run(VARNHOLT_CMAKE, command);
        QVERIFY2(run.Status == 0, qPrintable(command.join(' ') + '\n' + run.Out + run.Err));
    }
}

void ExamplesTest::TheExampleHostInstallsTheExampleGame()
{
    LanternGame const game;
    ToolRun const run("env",
                      {"VARNHOLT_CONTENT_BASE_URL=" + game.Server.BaseUrl(),
                       Built("host/example-host"), Module(), game.Folder, game.SettingsFile});
    QVERIFY2(run.Status == 0, qPrintable(run.Out + run.Err));
    QVERIFY2(run.Out.contains("Lantern Coast is installed"), qPrintable(run.Out));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Read("settings/lantern.conf"), QByteArray("language = enUS"));
    QVERIFY(!game.Has("WTF/Config.wtf"));
    QVERIFY(QFileInfo(game.Path("Lantern")).isExecutable());
}

void ExamplesTest::AProgramOverTheHostsLibraryLoadsTheExampleModule()
{
    HostGame const game;
    ToolRun const run(Built("embedding"), {Module(), game.SettingsFile});
    QVERIFY2(run.Status == 0, qPrintable(run.Out + run.Err));
    QCOMPARE(run.Out, QString("Lantern Coast\n"));
}

void ExamplesTest::TheInstalledHostShowsBothGamesAndServesTheSecond()
{
    LanternGame const game;
    QString const host = Installed(VARNHOLT_PROGRAMS_FOLDER "/varnholt-host");
    ToolRun const info(host, {"info", "--all"});
    QVERIFY2(info.Status == 0, qPrintable(info.Out + info.Err));
    QVERIFY2(info.Out.contains("Mists of Pandaria\n") && info.Out.contains("Lantern Coast\n"),
             qPrintable(info.Out));
    ToolRun const run(host, HostProcess::Options(game) +
                                QStringList{"--module", Module(), "install", game.Folder});
    QVERIFY2(run.Status == 0, qPrintable(run.Out + run.Err));
    QCOMPARE(game.Wrong(), QStringList());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ExamplesTest)
#include "tst_Examples.moc"
