#include "Tests/Endurance/EnduringGame.hpp"
#include "Tests/Runs/Game.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <memory>

namespace Varnholt::TestSupport {

namespace {

/// So many connections a server is given at the same time.
constexpr int c_Connections = 6;

} // namespace

/// What a server has never answered must not stand in the way of what is asked of it later.
class SilentServerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void SizesThatNeverCameDoNotHoldUpTheNextRun();
    void SizesThatNeverCameDoNotHoldUpTheStreamedFiles();
    void AnUninstalledGameKeepsNoQueryOpen();
    void ARealmListThatNeverCameDoesNotHoldUpTheNextRun();
    void QueriesAndFetchesGoWithTheApplication();
    void WhatFollowsDroppedQueriesTakesNewConnections_data();
    void WhatFollowsDroppedQueriesTakesNewConnections();
    void ConnectionsInUseAreRenewedWhenTheyAreFree();
    void ATransferLetGoEndsWithTheNextInstallation();
    void ATransferLetGoEndsWithASuspension();

private:
    /// A game that was uninstalled in the middle of a transfer which brings nothing more.
    [[nodiscard]] static Launcher::HTTP_DownloadFileRequest* LetTransferGo(Game& p_Game);
    /// As many files as there are connections, their sizes never told.
    static void AddFilesOfUnknownSize(Game& p_Game);
};

void SilentServerTest::AddFilesOfUnknownSize(Game& p_Game)
{
    for (int i = 0; i < c_Connections; ++i) {
        QString const name = QString("file %1").arg(i);
        p_Game.Add({name, SampleContent::Bytes(500, quint32(i + 1)), 0x20});
        p_Game.Server.Script(p_Game.Content.ServerPath(name)).Then(Answer::SilentBeforeHeaders());
    }
}

void SilentServerTest::SizesThatNeverCameDoNotHoldUpTheNextRun()
{
    Game game;
    AddFilesOfUnknownSize(game);
    game.Begin();
    QVERIFY(game.Host.RunUntil([&] { return game.Requested().size() == c_Connections; }));
    game.App.Repair();
    QVERIFY(game.Finish());
    for (SampleFile const& file : game.Content.Files)
        QCOMPARE(game.Read(file.Path), file.Bytes);
}

void SilentServerTest::SizesThatNeverCameDoNotHoldUpTheStreamedFiles()
{
    Game game;
    AddFilesOfUnknownSize(game);
    game.Add({"streamed", "s", 0, {}, true}).Begin();
    QVERIFY(game.Host.RunUntil([&] { return game.Requested().size() == c_Connections; }));
    game.App.ResumeDownload(); // does not wait for the sizes
    QVERIFY(game.Host.RunUntil([&] { return game.Host.FinishedCount == 1; }));
    QCOMPARE(game.Read("streamed"), QByteArray("s"));
}

void SilentServerTest::AnUninstalledGameKeepsNoQueryOpen()
{
    Game game;
    AddFilesOfUnknownSize(game);
    game.Begin();
    QVERIFY(game.Host.RunUntil([&] { return game.Requested().size() == c_Connections; }));
    game.App.Uninstall(false);
    QVERIFY(game.Host.RunUntil([&] { return game.Server.OpenConnections() == 0; }));
    QVERIFY(game.App.ContentSizeRequests.empty());
}

void SilentServerTest::ARealmListThatNeverCameDoesNotHoldUpTheNextRun()
{
    EnduringGame game(TestHost::Worker::Running);
    QVERIFY(game.Begin());
    game.Server.Script(game.Content.RealmListPath()).Always(Answer::SilentBeforeHeaders());
    game.App.Install(game.Folder, false);
    for (int i = 1; i <= c_Connections; ++i) {
        QVERIFY(
            game.RunUntil([&] { return game.Server.Count(game.Content.RealmListPath()) == i; }));
        game.App.Repair();
    }
    QVERIFY(game.RunUntil([&] { return game.Host.FinishedCount == 1; }));
    QCOMPARE(game.App.ContentRequests.size(), std::size_t{1});
    game.Server.ClearScript(game.Content.RealmListPath());
    game.App.Repair();
    QVERIFY(game.Finish());
    QCOMPARE(game.Faults(), QStringList());
}

void SilentServerTest::QueriesAndFetchesGoWithTheApplication()
{
    LogCapture const log;
    ScriptedServer server;
    server.Script("/closed").Always(Answer::ClosedBeforeHeaders());
    server.Script("/silent").Always(Answer::SilentBeforeHeaders());
    auto const held = std::make_shared<int>(0);
    {
        TestApplication app;
        app.GetRemoteFileSize(server.Url("/closed"), [held](QString const&, unsigned long long) {});
        app.GetRemoteFileSize(server.Url("/silent"), [held](QString const&, unsigned long long) {});
        app.GetRemoteFileContent(server.Url("/silent"), [held](QString const&, QByteArray*) {});
        QTRY_COMPARE(server.Count("/silent"), 2);
        QCOMPARE(held.use_count(), 4L);
    }
    QCOMPARE(held.use_count(), 1L);
}

void SilentServerTest::WhatFollowsDroppedQueriesTakesNewConnections_data()
{
    QTest::addColumn<bool>("query");
    QTest::newRow("size query") << true;
    QTest::newRow("fetch") << false;
}

/// Qt may have lost the old ones, in a moment that no test can hit: between the end of a connection
/// before any header and its own second try.
void SilentServerTest::WhatFollowsDroppedQueriesTakesNewConnections()
{
    QFETCH(bool, query);
    ScriptedServer server;
    TestApplication app;
    server.Script("/silent").Always(Answer::SilentBeforeHeaders());
    int answers = 0;
    auto const count = [&answers](QString const&, QByteArray*) { ++answers; };
    app.GetRemoteFileContent(server.Url("/a"), count);
    app.GetRemoteFileContent(server.Url("/b"), count);
    QTRY_COMPARE(answers, 2);
    Launcher::HTTP_GetRemotefileContentRequest* fetch = nullptr;
    if (query)
        app.GetRemoteFileSize(server.Url("/silent"), [](QString const&, unsigned long long) {});
    else
        fetch = app.GetRemoteFileContent(server.Url("/silent"), [](QString const&, QByteArray*) {});
    QTRY_COMPARE(server.Count("/silent"), 1);
    if (query)
        app.DropSizeQueries();
    else
        app.AbortFetch(*fetch);
    QTRY_COMPARE(server.OpenConnections(), 0);
    app.GetRemoteFileContent(server.Url("/a"), count);
    QTRY_COMPARE(answers, 3);
}

void SilentServerTest::ConnectionsInUseAreRenewedWhenTheyAreFree()
{
    ScriptedServer server;
    TestApplication app;
    server.Script("/silent").Always(Answer::SilentBeforeHeaders());
    int answers = 0;
    app.GetRemoteFileContent(server.Url("/silent"),
                             [&](QString const&, QByteArray*) { ++answers; });
    app.GetRemoteFileSize(server.Url("/silent"), [](QString const&, unsigned long long) {});
    QTRY_COMPARE(server.Count("/silent"), 2);
    app.DropSizeQueries();
    server.OpenGate("/silent");
    QTRY_COMPARE(answers, 1);
    QTRY_COMPARE(server.OpenConnections(), 1);
    app.DropSizeQueries(); // none, but another chance
    QTRY_COMPARE(server.OpenConnections(), 0);
}

Launcher::HTTP_DownloadFileRequest* SilentServerTest::LetTransferGo(Game& p_Game)
{
    constexpr int c_Arrived = 100;
    p_Game.Add({"a", SampleContent::Bytes(500)});
    p_Game.Server.Script(p_Game.Content.ServerPath("a"))
        .Then(Answer::Normal())
        .Then(Answer::SilentAfter(c_Arrived));
    p_Game.Begin();
    if (!p_Game.RunUntilPart("a", c_Arrived))
        return nullptr;
    auto* const transfer = p_Game.App.CurrentDownload;
    p_Game.App.Uninstall(false);
    return p_Game.App.Transfers.IsAside(transfer) ? transfer : nullptr;
}

void SilentServerTest::ATransferLetGoEndsWithTheNextInstallation()
{
    Game game;
    QVERIFY(LetTransferGo(game));
    game.Put("a", SampleContent::Bytes(500)); // so that there is nothing to fetch
    game.App.Install(game.Folder, false);
    QVERIFY(game.Host.RunUntil([&] { return game.App.Transfers.AsideCount() == 0; }));
    QVERIFY(game.Finish());
    QCOMPARE(game.Requests("a"), 2);
}

void SilentServerTest::ATransferLetGoEndsWithASuspension()
{
    Game game;
    auto const* const transfer = LetTransferGo(game);
    QVERIFY(transfer);
    QVERIFY(!transfer->Aborted);
    game.App.SuspendDownload();
    QVERIFY(transfer->AbortAcknowledged);
    QVERIFY(game.Host.RunUntil([&] { return game.App.Transfers.AsideCount() == 0; }));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::SilentServerTest)
#include "tst_SilentServer.moc"
