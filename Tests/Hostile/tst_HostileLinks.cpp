#include "Tests/Hostile/HostileGame.hpp"
#include "Tests/Support/FileTools.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

/// Symbolic links on the way to the build's files, or in their places.
class HostileLinksTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void WhatALinkLeadsOutIsLeftAloneInAWholeLife_data();
    void WhatALinkLeadsOutIsLeftAloneInAWholeLife();
    void EachFileLeftAloneIsWarnedOfOnceInARun();
    void TheNextRunAfterTheLinkIsGoneCompletesTheGame();
    void ALinkThatIsMadeDuringTheRunIsSeen_data();
    void ALinkThatIsMadeDuringTheRunIsSeen();
    void OfAnotherLanguageALinkIsNobodysConcern();
    void AProgramThatALinkLeadsOutIsNotStarted();
    void ALinkThatStaysInsideGoesOnWorking_data();
    void ALinkThatStaysInsideGoesOnWorking();
    void TheFolderItselfMayBeALink();
};

void HostileLinksTest::WhatALinkLeadsOutIsLeftAloneInAWholeLife_data()
{
    QTest::addColumn<QString>("Link");
    QTest::addColumn<QString>("Target"); // "(out)" is the tree beside the folder
    QTest::addColumn<bool>("IsThere");
    QTest::newRow("folder") << "Data"
                            << "(out)" << true;
    QTest::newRow("folder that is not there") << "Data"
                                              << "(out)/none" << false;
    QTest::newRow("file") << "readme.txt"
                          << "(out)/file" << true;
    QTest::newRow("file that is not there") << "readme.txt"
                                            << "(out)/none" << false;
    QTest::newRow("circle") << "readme.txt"
                            << "readme.txt" << false;
}

void HostileLinksTest::WhatALinkLeadsOutIsLeftAloneInAWholeLife()
{
    QFETCH(QString, Link);
    QFETCH(QString, Target);
    QFETCH(bool, IsThere);
    HostileGame game;
    game.AddEntry("Data/program", HostileGame::c_Executable)
        .AddEntry("Data/file", HostileGame::c_ReadOnly)
        .AddEntry("Data/deep/below/file", HostileGame::c_ReadOnly | HostileGame::c_Executable, true)
        .AddEntry("Data/empty/new");
    game.Link(Link, Target.replace("(out)", game.Outside.Path()));
    game.Begin();

    QCOMPARE(game.InstallOver(), QString("link-leads-out"));
    QCOMPARE(game.Disturbances(), QStringList());
    QCOMPARE(game.Result().Problem->ExitStatus(), 7);
    QVERIFY2(game.Sentence().contains(game.Path(Link)), qPrintable(game.Sentence()));
    for (SampleFile const& file : game.Content.Files) {
        bool const isLeftAlone = file.Path == Link || file.Path.startsWith(Link + '/');
        if (!isLeftAlone && file.Locale != "frFR")
            QCOMPARE(game.Read(file.Path), file.Bytes);
    }
    QVERIFY(game.IsMarkedUnfinished());
    for (RequestType const kind :
         {RequestType::Update, RequestType::Check, RequestType::Verify, RequestType::Repair})
        QCOMPARE(game.Run(kind), QString("link-leads-out"));
    QCOMPARE(game.Play(), QString("done"));
    QCOMPARE(game.Uninstall(), QString(IsThere ? "files-not-removed" : "done"));
    QCOMPARE(game.Disturbances(), QStringList());
    QVERIFY(QFileInfo(game.Path(Link)).isSymbolicLink());
}

void HostileLinksTest::EachFileLeftAloneIsWarnedOfOnceInARun()
{
    HostileGame game;
    game.AddEntry("Data/program", HostileGame::c_Executable);
    game.Link("Data", game.Outside.Path());
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
    game.Link("Data", game.Outside.Path());
    game.Begin();
    QCOMPARE(game.InstallOver(), QString("link-leads-out"));
    QVERIFY(QFile::remove(game.Path("Data")));
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.WrongEntries(), QStringList());
    QVERIFY(!game.IsMarkedUnfinished());
    QCOMPARE(game.Disturbances(), QStringList());
}

void HostileLinksTest::ALinkThatIsMadeDuringTheRunIsSeen_data()
{
    QTest::addColumn<QString>("Link");
    QTest::addColumn<QString>("Target");
    QTest::newRow("before a file is fetched") << "Data/enUS"
                                              << "";
    QTest::newRow("before a file is placed") << "Data/base.MPQ"
                                             << "base.MPQ";
    QTest::newRow("before a file is placed, to nothing") << "Data/base.MPQ"
                                                         << "none";
}

void HostileLinksTest::ALinkThatIsMadeDuringTheRunIsSeen()
{
    QFETCH(QString, Link);
    QFETCH(QString, Target);
    HostileGame game;
    game.Begin();
    QString const first = game.Content.ServerPath("Data/base.MPQ");
    game.Server.Script(first).Then(Answer::Normal()); // the question for its size
    game.Server.Script(first).Then(Answer::SilentAfter(1000));
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitForPart("Data/base.MPQ", 1000));
    game.Link(Link, game.Outside.Path(Target));
    game.Server.OpenGate(first);
    QCOMPARE(game.End(), QString("link-leads-out"));
    QCOMPARE(game.Disturbances(), QStringList());
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

void HostileLinksTest::AProgramThatALinkLeadsOutIsNotStarted()
{
    HostileGame game;
    QString const started = game.Base + "started";
    QString const script = game.Outside.Path("program");
    QVERIFY(WriteFile(script, "#!/bin/sh\ntouch '" + started.toUtf8() + "'\n"));
    QVERIFY(SetMode(script, 0755));
    game.Begin();
    QCOMPARE(game.Install(), QString("done"));
    game.Link(HostileGame::Program(), script);
    QCOMPARE(game.Play(), QString("link-leads-out"));
    QCOMPARE(game.Disturbances(), QStringList());
    QVERIFY(!QFile::exists(started));
}

void HostileLinksTest::ALinkThatStaysInsideGoesOnWorking_data()
{
    QTest::addColumn<QString>("Link");
    QTest::addColumn<QString>("Target");
    QTest::newRow("folder") << "Data"
                            << "Elsewhere/deep";
    QTest::newRow("folder in full") << "Data"
                                    << "(game)Elsewhere/deep";
    QTest::newRow("file") << "readme.txt"
                          << "Elsewhere/file";
}

void HostileLinksTest::ALinkThatStaysInsideGoesOnWorking()
{
    QFETCH(QString, Link);
    QFETCH(QString, Target);
    HostileGame game;
    game.AddEntry("Data/program", HostileGame::c_Executable);
    game.Put("Elsewhere/file", "read me");
    QVERIFY(QDir().mkpath(game.Path("Elsewhere/deep")));
    game.Link(Link, Target.replace("(game)", game.Folder));
    game.Begin();
    QCOMPARE(game.InstallOver(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(ModeOf(game.Path("Data/program")), 0777);
    QVERIFY(QFileInfo(game.Path(Link)).isSymbolicLink());
    QCOMPARE(game.Run(RequestType::Verify), QString("done"));
    game.Damage("Data/base.MPQ");
    QCOMPARE(game.Run(RequestType::Repair), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Uninstall(), QString("done"));
    QVERIFY(!game.Has("Data/base.MPQ"));
    QVERIFY(!game.Has("readme.txt"));
    QCOMPARE(game.Log.CountContaining("leads out"), 0);
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
    QCOMPARE(game.Log.CountContaining("leads out"), 0);
}

} // namespace Varnholt::TestSupport

QTEST_GUILESS_MAIN(Varnholt::TestSupport::HostileLinksTest)
#include "tst_HostileLinks.moc"
