#include "Tests/Hostile/HostileGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

/// Symbolic links on the way to the build's files, or in their places: the player's own, which are
/// followed, and those of others, which lead where they will.
class HostileLinksTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void WhatIsNotFollowedIsLeftAloneInAWholeLife_data();
    void WhatIsNotFollowedIsLeftAloneInAWholeLife();
    void EachFileLeftAloneIsWarnedOfOnceInARun();
    void TheNextRunAfterTheLinkIsGoneCompletesTheGame();
    void AFolderThatThePlayerHasMovedIsFollowedInAWholeLife();
    void AGoodFileBehindThePlayersLinkIsAsGood();
    void AnyOtherLinkInAFilesPlaceGivesWay_data();
    void AnyOtherLinkInAFilesPlaceGivesWay();
    void ALinkThatIsMadeDuringTheRunIsSeen_data();
    void ALinkThatIsMadeDuringTheRunIsSeen();
    void OfAnotherLanguageALinkIsNobodysConcern();
    void AProgramThatAnothersLinkLeadsToIsNotStarted();
    void AFolderThatStaysInsideGoesOnWorking_data();
    void AFolderThatStaysInsideGoesOnWorking();
    void TheFolderItselfMayBeALink();
};

void HostileLinksTest::WhatIsNotFollowedIsLeftAloneInAWholeLife_data()
{
    QTest::addColumn<QString>("Target"); // "(out)" is the tree beside the folder
    QTest::addColumn<bool>("IsPlayers");
    AddRow("another's", "(out)", false);
    AddRow("another's, to nothing", "(out)/none", false);
    AddRow("the player's, to nothing", "(out)/none", true);
    AddRow("the player's, to a file", "(out)/file", true);
    AddRow("a circle", "Data", true);
}

void HostileLinksTest::WhatIsNotFollowedIsLeftAloneInAWholeLife()
{
    QFETCH(QString, Target);
    QFETCH(bool, IsPlayers);
    HostileGame game;
    game.AddEntry("Data/program", HostileGame::c_Executable)
        .AddEntry("Data/file", HostileGame::c_ReadOnly)
        .AddEntry("Data/deep/below/file", HostileGame::c_ReadOnly | HostileGame::c_Executable, true)
        .AddEntry("Data/empty/new");
    game.Link("Data", Target.replace("(out)", game.Outside.Path()));
    if (!IsPlayers && !GiveLinkToAnother(game.Path("Data")))
        QSKIP("only root can give a link to another user");
    game.Begin();

    QCOMPARE(game.InstallOver(), QString("link-leads-out"));
    QCOMPARE(game.Disturbances(), QStringList());
    QCOMPARE(game.Result().Problem->ExitStatus(), 7);
    QVERIFY2(game.Sentence().contains(game.Path("Data")), qPrintable(game.Sentence()));
    for (SampleFile const& file : game.Content.Files)
        if (!file.Path.startsWith("Data/"))
            QCOMPARE(game.Read(file.Path), file.Bytes);
    QVERIFY(game.IsMarkedUnfinished());
    for (RequestType const kind :
         {RequestType::Update, RequestType::Check, RequestType::Verify, RequestType::Repair})
        QCOMPARE(game.Run(kind), QString("link-leads-out"));
    QCOMPARE(game.Play(), QString("done"));
    bool const isFolder = QFileInfo(game.Path("Data")).isDir();
    QCOMPARE(game.Uninstall(), QString(isFolder ? "files-not-removed" : "done"));
    QCOMPARE(game.Disturbances(), QStringList());
    QVERIFY(QFileInfo(game.Path("Data")).isSymbolicLink());
}

void HostileLinksTest::EachFileLeftAloneIsWarnedOfOnceInARun()
{
    HostileGame game;
    game.AddEntry("Data/program", HostileGame::c_Executable);
    game.Link("Data", "none");
    game.Begin();
    QCOMPARE(game.InstallOver(), QString("link-leads-out"));
    for (char const* const name : {"Data/program", "Data/base.MPQ", "Data/streamed 1.MPQ"})
        QCOMPARE(game.Log.CountContaining(QString("leaves \"%1\" alone").arg(name)), 1);
    QCOMPARE(game.Log.CountContaining("frFR"), 0);
    game.Log.Clear();
    QCOMPARE(game.Run(RequestType::Repair), QString("link-leads-out"));
    QCOMPARE(game.Log.CountContaining("leaves \"Data/program\" alone"), 1);
}

void HostileLinksTest::TheNextRunAfterTheLinkIsGoneCompletesTheGame()
{
    HostileGame game;
    game.AddEntry("Data/first", 0x20).AddEntry("Data/later", 0, true);
    game.Link("Data", "none");
    game.Begin();
    QCOMPARE(game.InstallOver(), QString("link-leads-out"));
    QVERIFY(QFile::remove(game.Path("Data")));
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.WrongEntries(), QStringList());
    QVERIFY(!game.IsMarkedUnfinished());
    QCOMPARE(game.Disturbances(), QStringList());
}

void HostileLinksTest::AFolderThatThePlayerHasMovedIsFollowedInAWholeLife()
{
    HostileGame game;
    game.AddEntry("Data/program", HostileGame::c_Executable)
        .AddEntry("Data/deep/file", HostileGame::c_ReadOnly);
    QString const disk = game.Base + "another disk/";
    QVERIFY(WriteFile(disk + "the player's own", "of the player"));
    game.Link("Data", disk);
    game.Begin();
    QCOMPARE(game.InstallOver(), QString("done"));
    QCOMPARE(game.Wrong() + game.WrongEntries(), QStringList());
    QCOMPARE(ReadFile(disk + "deep/file"), game.Read("Data/deep/file"));
    QCOMPARE(ModeOf(disk + "program"), 0777);
    QVERIFY(!game.IsMarkedUnfinished());
    for (RequestType const kind : {RequestType::Update, RequestType::Check, RequestType::Verify})
        QCOMPARE(game.Run(kind), QString("done"));
    game.Damage("Data/base.MPQ");
    QCOMPARE(game.Run(RequestType::Verify), QString("files-wrong"));
    QCOMPARE(game.Run(RequestType::Repair), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Play(), QString("done"));
    QCOMPARE(game.Uninstall(), QString("done"));
    QVERIFY(QFileInfo(game.Path("Data")).isSymbolicLink());
    QCOMPARE(QDir(disk).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList("the player's own"));
    QCOMPARE(game.Log.CountContaining("is not followed"), 0);
}

void HostileLinksTest::AGoodFileBehindThePlayersLinkIsAsGood()
{
    HostileGame game;
    game.AddEntry("file", HostileGame::c_ReadOnly | HostileGame::c_Executable);
    QString const mine = game.Base + "mine";
    QVERIFY(WriteFile(mine, HostileGame::BytesOf("file")) && SetMode(mine, 0640));
    game.Link("file", mine);
    game.Begin();
    QCOMPARE(game.InstallOver(), QString("done"));
    for (RequestType const kind :
         {RequestType::Update, RequestType::Check, RequestType::Verify, RequestType::Repair})
        QCOMPARE(game.Run(kind), QString("done"));
    QCOMPARE(game.Play(), QString("done"));
    QVERIFY(QFileInfo(game.Path("file")).isSymbolicLink());
    QCOMPARE(game.Server.Count("/pelmora_app/hostile/0"), 0);
    QCOMPARE(ModeOf(mine), 0640);
    QCOMPARE(game.Uninstall(), QString("done"));
    QVERIFY(!QFileInfo(game.Path("file")).isSymbolicLink());
    QCOMPARE(ReadFile(mine), HostileGame::BytesOf("file"));
    QCOMPARE(ModeOf(mine), 0640);
}

void HostileLinksTest::AnyOtherLinkInAFilesPlaceGivesWay_data()
{
    QTest::addColumn<QString>("Target");
    QTest::addColumn<bool>("IsPlayers");
    AddRow("the player's, to other bytes", "(base)mine", true);
    AddRow("the player's, to nothing", "none", true);
    AddRow("the player's, to a folder", "(base)", true);
    AddRow("a circle", "file", true);
    AddRow("another's, to a good file", "(base)good", false);
    AddRow("another's, to a good file inside", "inside", false);
    AddRow("another's, to nothing", "none", false);
}

void HostileLinksTest::AnyOtherLinkInAFilesPlaceGivesWay()
{
    QFETCH(QString, Target);
    QFETCH(bool, IsPlayers);
    for (qint32 const flags : {0, HostileGame::c_ReadOnly | HostileGame::c_Executable}) {
        HostileGame game;
        game.AddEntry("file", flags);
        QString const mine = game.Base + "mine";
        QVERIFY(WriteFile(mine, "of the player") && SetMode(mine, 0440));
        for (QString const& good : {game.Base + "good", game.Path("inside")})
            QVERIFY(WriteFile(good, HostileGame::BytesOf("file")) && SetMode(good, 0640));
        QString target = Target;
        game.Link("file", target.replace("(base)", game.Base));
        if (!IsPlayers && !GiveLinkToAnother(game.Path("file")))
            QSKIP("only root can give a link to another user");
        game.Begin();
        QCOMPARE(game.InstallOver(), QString("done"));
        QCOMPARE(game.WrongEntries(), QStringList());
        QVERIFY(!QFileInfo(game.Path("file")).isSymbolicLink());
        QCOMPARE(ReadFile(mine), QByteArray("of the player"));
        QCOMPARE(ModeOf(mine), 0440);
        QCOMPARE(ModeOf(game.Base + "good"), 0640);
        QCOMPARE(ModeOf(game.Path("inside")), 0640);
    }
}

void HostileLinksTest::ALinkThatIsMadeDuringTheRunIsSeen_data()
{
    QTest::addColumn<QString>("Link");
    QTest::addColumn<QString>("Target");
    QTest::addColumn<QString>("End");
    AddRow("before a file is fetched", "Data/enUS", "(out)/none", "link-leads-out");
    AddRow("before a file is placed", "Data/base.MPQ", "(out)/base.MPQ", "done");
    AddRow("before a file is placed, to nothing", "Data/base.MPQ", "(out)/none", "done");
}

void HostileLinksTest::ALinkThatIsMadeDuringTheRunIsSeen()
{
    QFETCH(QString, Link);
    QFETCH(QString, Target);
    QFETCH(QString, End);
    HostileGame game;
    game.Begin();
    QString const first = game.Content.ServerPath("Data/base.MPQ");
    game.Server.Script("GET " + first).Then(Answer::SilentAfter(1000));
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitForPart("Data/base.MPQ", 1000));
    game.Link(Link, Target.replace("(out)", game.Outside.Path()));
    game.Server.OpenGate(first);
    QCOMPARE(game.End(), End);
    QCOMPARE(game.Disturbances(), QStringList());
    QCOMPARE(game.Read("Data/base.MPQ"), game.Content.Files[0].Bytes);
    QCOMPARE(game.Read("Data/first build.MPQ"), game.Content.Files[1].Bytes);
    QVERIFY(game.Has("Data/streamed 2.MPQ"));
}

void HostileLinksTest::OfAnotherLanguageALinkIsNobodysConcern()
{
    HostileGame game;
    game.Link("Data/frFR", game.Outside.Path());
    game.Begin();
    QCOMPARE(game.InstallOver(), QString("done"));
    QCOMPARE(game.Disturbances(), QStringList());
}

void HostileLinksTest::AProgramThatAnothersLinkLeadsToIsNotStarted()
{
    HostileGame game;
    QString const started = game.Base + "started";
    QString const script = game.Outside.Path("program");
    QVERIFY(WriteFile(script, "#!/bin/sh\ntouch '" + started.toUtf8() + "'\n"));
    QVERIFY(SetMode(script, 0755));
    game.Begin();
    QCOMPARE(game.Install(), QString("done"));
    game.Link(HostileGame::Program(), script);
    if (!GiveLinkToAnother(game.Path(HostileGame::Program())))
        QSKIP("only root can give a link to another user");
    QCOMPARE(game.Play(), QString("link-leads-out"));
    QCOMPARE(game.Disturbances(), QStringList());
    QVERIFY(!QFile::exists(started));
}

void HostileLinksTest::AFolderThatStaysInsideGoesOnWorking_data()
{
    QTest::addColumn<QString>("Target");
    AddRow("by a detour", "Elsewhere/deep");
    AddRow("in full", "(game)Elsewhere/deep");
}

void HostileLinksTest::AFolderThatStaysInsideGoesOnWorking()
{
    QFETCH(QString, Target);
    HostileGame game;
    game.AddEntry("Data/program", HostileGame::c_Executable);
    QVERIFY(QDir().mkpath(game.Path("Elsewhere/deep")));
    game.Link("Data", Target.replace("(game)", game.Folder));
    if (IsRoot() && !GiveLinkToAnother(game.Path("Data"))) // nobody cares whose it is
        QSKIP("root cannot give a link to another user");
    game.Begin();
    QCOMPARE(game.InstallOver(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(ModeOf(game.Path("Data/program")), 0777);
    QVERIFY(QFileInfo(game.Path("Data")).isSymbolicLink());
    QCOMPARE(game.Run(RequestType::Verify), QString("done"));
    game.Damage("Data/base.MPQ");
    QCOMPARE(game.Run(RequestType::Repair), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Uninstall(), QString("done"));
    QVERIFY(!game.Has("Data/base.MPQ"));
    QCOMPARE(game.Log.CountContaining("is not followed"), 0);
}

void HostileLinksTest::TheFolderItselfMayBeALink()
{
    HostileGame game;
    QVERIFY(QDir().mkpath(game.Base + "another volume"));
    QVERIFY(QFile::link(game.Base + "another volume", game.Base + "link"));
    game.Folder = game.Base + "link/";
    game.Begin();
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY(QFile::exists(game.Base + "another volume/Data/base.MPQ"));
    QCOMPARE(game.Play(), QString("done"));
    QCOMPARE(game.Uninstall(), QString("done"));
    QVERIFY(!game.Has("Data"));
    QCOMPARE(game.Log.CountContaining("is not followed"), 0);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostileLinksTest)
#include "tst_HostileLinks.moc"
