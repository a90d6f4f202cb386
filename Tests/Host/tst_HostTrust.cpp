#include "Host/Core/Network/OfflineCopies.hpp"
#include "Tests/Host/HostProcess.hpp"
#include "Tests/Host/JsonReport.hpp"
#include "Tests/Host/SignedGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QtTest>

namespace Varnholt::TestSupport {

/// A host that has a key of the publisher's.
class HostTrustTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AGameThatIsSignedIsInstalledUpdatedAndPlayed();
    void WithoutAKeyNoSignatureIsAskedFor();
    void AShortRaceOfThePublishersIsWaitedOut();
    void AGameOfBeforeTheKeyIsVerifiedFirst();
    void WhatARunWithoutTheKeyBringsIsNotTrustedLater();
    void ARunThatDidNotVerifyKeepsTheGameFromStarting();
    void AQuickCheckVerifiesToo();
    void CopiesAreVerifiedWhenTheyAreUsed();
    void CopiesOlderThanWhatWasSeenSinceStillDo();
    void AnOlderSetOfCopiesIsARollback();
    void TheHighestSequenceOutlivesTheProgramAndTheGame();
    void AKeyThatTheOldOneHasSignedTakesItsPlace();
    void AKeyThatSomebodyElseHasSignedDoesNot();
    void AKeyThatIsNoneIsRefused();
    void AModuleCanNameAKeyThatTheUsersOneReplaces();
    void TheProgramTakesAKeyOrItsFileAndKeepsTheKey();
};

void HostTrustTest::AGameThatIsSignedIsInstalledUpdatedAndPlayed()
{
    SignedGame game;
    QVERIFY(game.Open());
    QCOMPARE(game.Info->TrustKey, game.Publisher.Key());
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QVERIFY(game.Read(SignedGame::c_Config).contains(game.Content.RealmList));
    for (RequestType const kind :
         {RequestType::Update, RequestType::Check, RequestType::Verify, RequestType::Repair,
          RequestType::AskMirrors, RequestType::ListLocales, RequestType::Play})
        QCOMPARE(game.Run(kind), QString("done"));
    QTRY_COMPARE(game.Starts(), QByteArray("good\n"));
    QCOMPARE(game.Notices, QStringList());
}

void HostTrustTest::WithoutAKeyNoSignatureIsAskedFor()
{
    SignedGame game;
    game.Options.TrustKey.clear();
    QVERIFY(game.Open());
    QCOMPARE(game.Info->TrustKey, QString());
    QCOMPARE(game.Install(), QString("done"));
    for (RecordedRequest const& request : game.Server.Requests())
        QVERIFY2(!request.Path.endsWith(".minisig"), qPrintable(request.Path));
    QVERIFY(!game.SettingKeys().join(' ').contains("trust"));
}

void HostTrustTest::AShortRaceOfThePublishersIsWaitedOut()
{
    SignedGame game;
    QString const version = game.Content.VersionPath();
    QString const manifest = game.Content.ManifestPath();
    game.Server.Script(version + ".minisig").Then(Answer::Status(404));
    game.Server.Script(version).Then(Answer()).Then(Answer().Body("{\"build\":\"of before\"}"));
    game.Server.Script(manifest).Then(Answer().Body("{}"));
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Server.Count(version), 3);
    QCOMPARE(game.Server.Count(manifest), 2);

    game.Server.Script(version + ".minisig").Always(Answer::Status(404));
    QCOMPARE(game.Run(RequestType::Update), QString("signature-missing"));
    QCOMPARE(game.Server.Count(version), 7); // not for ever
}

void HostTrustTest::AGameOfBeforeTheKeyIsVerifiedFirst()
{
    SignedGame game;
    game.PutInstalled();
    game.Put("Data/base.MPQ", "of somebody else's");
    QVERIFY(game.Open());
    QCOMPARE(game.Play(), QString("game-unverified"));
    QCOMPARE(game.Result().Problem->ExitStatus(), 10);
    QCOMPARE(game.Run(RequestType::Verify), QString("files-wrong"));
    QCOMPARE(game.Play(), QString("game-unverified"));
    QCOMPARE(game.Run(RequestType::Repair), QString("done"));
    QCOMPARE(game.Play(), QString("done"));
}

void HostTrustTest::WhatARunWithoutTheKeyBringsIsNotTrustedLater()
{
    SignedGame game;
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    QString const key = std::exchange(game.Options.TrustKey, QString());
    game.Content.RealmList = "SET realmlist \"of somebody else's\"";
    game.Server.Serve(game.Content.RealmListPath(), game.Content.RealmList);
    QVERIFY(game.Open());
    QCOMPARE(game.Play(), QString("done"));
    game.Options.TrustKey = key;
    QVERIFY(game.Open());
    QCOMPARE(game.Play(), QString("game-unverified"));
    // What was streamed in that run has no mark: a list that says it is there is not believed.
    game.PublishSigned();
    game.Put("Data/streamed 1.MPQ", "of somebody else's");
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Play(), QString("done"));
}

void HostTrustTest::ARunThatDidNotVerifyKeepsTheGameFromStarting()
{
    SignedGame game;
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    game.Server.Script(game.Content.VersionPath()).Always(Answer().Body("{\"build\":\"x\"}"));
    QCOMPARE(game.Play(), QString("signature-wrong")); // though copies would do
    game.Server.ClearScript(game.Content.VersionPath());
    QCOMPARE(game.Play(), QString("game-unverified"));
    QCOMPARE(game.Run(RequestType::Verify), QString("done"));
    QCOMPARE(game.Play(), QString("done"));
}

void HostTrustTest::AQuickCheckVerifiesToo()
{
    SignedGame game;
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Run(SessionGame::QuickCheck()), QString("done"));
    QString const version = game.Content.VersionPath();
    game.Server.Script(version).Always(Answer().Body("{\"build\":\"x\"}"));
    QCOMPARE(game.Run(SessionGame::QuickCheck()), QString("signature-wrong"));
    game.Server.ClearScript(version);
    game.Server.Script(version).Always(Answer::Status(404));
    QCOMPARE(game.Run(SessionGame::QuickCheck()), QString("server-refusal"));
    game.Options.Offline = true;
    QVERIFY(game.Open());
    QCOMPARE(game.Run(SessionGame::QuickCheck()), QString("done"));
}

void HostTrustTest::CopiesAreVerifiedWhenTheyAreUsed()
{
    SignedGame game;
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    game.Options.Offline = true;
    QVERIFY(game.Open());
    QCOMPARE(game.Play(), QString("done"));
    QDir const folder(Host::OfflineCopies(game.SettingsFile).Folder());
    auto const before = game.Files();
    for (QString const& file :
         QStringList{"realmlist.info", "cdns.info", "version.json", "info.json"}) {
        QStringList const names = folder.entryList({"*" + file}, QDir::Files);
        QCOMPARE(names.size(), 1);
        QByteArray const bytes = ReadFile(folder.filePath(names[0]));
        QVERIFY(WriteFile(folder.filePath(names[0]), bytes + ' '));
        QCOMPARE(file + ' ' + game.Play(), file + " signature-wrong");
        QVERIFY(WriteFile(folder.filePath(names[0]), bytes));
        QCOMPARE(game.Run(RequestType::Verify), QString("done"));
    }
    QVERIFY(QFile::remove(folder.filePath(folder.entryList({"*version.json.minisig"})[0])));
    QCOMPARE(game.Play(), QString("signature-missing"));
    QCOMPARE(game.Files(), before);
}

/// Whoever has only looked at a new build has not got it: the old one can be played all the same.
void HostTrustTest::CopiesOlderThanWhatWasSeenSinceStillDo()
{
    SignedGame game;
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    game.Publisher.Comment.Sequence = 6;
    game.Content.Build = "build_2";
    game.PublishSigned();
    QCOMPARE(game.Run(SessionGame::QuickCheck()), QString("update-available"));
    game.Server.Stop();
    QCOMPARE(game.Play(), QString("done"));
    QCOMPARE(game.Result().Build, QString("build_1"));
}

void HostTrustTest::AnOlderSetOfCopiesIsARollback()
{
    SignedGame game;
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    Host::OfflineCopies const copies(game.SettingsFile);
    auto const old = copies.Read();
    game.Publisher.Comment.Sequence = 6;
    game.PublishSigned();
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QVERIFY(copies.Keep(old, "pelmora_app/version.json"));
    game.Server.Stop();
    QCOMPARE(game.Play(), QString("rolled-back"));
}

void HostTrustTest::TheHighestSequenceOutlivesTheProgramAndTheGame()
{
    SignedGame game;
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    Host::RunRequest removal;
    removal.Kind = RequestType::Uninstall;
    removal.DeletesFiles = true;
    QCOMPARE(game.Run(removal), QString("done"));
    game.Publisher.Comment.Sequence = 4;
    game.PublishSigned();
    QVERIFY(game.Open());
    auto const before = game.Files();
    QCOMPARE(game.InstallOver(), QString("rolled-back"));
    QCOMPARE(game.Files(), before);
    game.Publisher.Comment.Sequence = 5; // the same is fine
    game.PublishSigned();
    QCOMPARE(game.InstallOver(), QString("done"));
}

void HostTrustTest::AKeyThatTheOldOneHasSignedTakesItsPlace()
{
    SignedGame game;
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    Signer const next(game.Publisher.Comment);
    next.Publish(game.Content, game.Server);
    game.Publisher.Serve(game.Server, "/pelmora_app/trust-key", next.Key().toLatin1() + '\n',
                         Signer::Role::Key);
    QCOMPARE(game.Run(SessionGame::QuickCheck()), QString("done"));
    game.Server.Remove("/pelmora_app/trust-key"); // it is remembered
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Play(), QString("done"));
    game.PublishSigned(); // of the old key nothing is taken any more
    QCOMPARE(game.Run(RequestType::Update), QString("key-wrong"));
}

void HostTrustTest::AKeyThatSomebodyElseHasSignedDoesNot()
{
    SignedGame game;
    Signer const thief(game.Publisher.Comment);
    thief.Publish(game.Content, game.Server);
    thief.Serve(game.Server, "/pelmora_app/trust-key", thief.Key().toLatin1() + '\n',
                Signer::Role::Key);
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("key-wrong"));
    QCOMPARE(game.FilesOnDisk(), QStringList());
    // Nor is another document that the publisher has signed one that names a key.
    game.Publisher.Serve(game.Server, "/pelmora_app/trust-key", thief.Key().toLatin1() + '\n',
                         Signer::Role::RealmList);
    QCOMPARE(game.Install(), QString("key-wrong"));
    QCOMPARE(game.FilesOnDisk(), QStringList());
}

void HostTrustTest::AKeyThatIsNoneIsRefused()
{
    SignedGame game;
    game.Options.TrustKey = "RWabc";
    QVERIFY(!game.Open());
    QCOMPARE(game.OpenFailure->Identifier(), QString("option-invalid"));
    game.Options.TrustKey.clear();
    game.Options.ModuleFile = QStringLiteral(VARNHOLT_NO_KEY_MODULE);
    QVERIFY(!game.Open());
    QCOMPARE(game.OpenFailure->Identifier(), QString("module-unloadable"));
}

void HostTrustTest::AModuleCanNameAKeyThatTheUsersOneReplaces()
{
    SignedGame game;
    game.Options.ModuleFile = QStringLiteral(VARNHOLT_KEYED_MODULE);
    game.Content.AppId = game.Publisher.Comment.Game = "keyed_app";
    game.PublishSigned();
    QVERIFY(game.Open());
    QCOMPARE(game.Info->TrustKey, game.Publisher.Key());
    QCOMPARE(game.Install(), QString("done"));
    game.Options.TrustKey.clear();
    QVERIFY(game.Open());
    QCOMPARE(game.Info->TrustKey, QStringLiteral(VARNHOLT_KEY_OF_MODULE));
    QCOMPARE(game.Run(RequestType::Update), QString("key-wrong"));
}

void HostTrustTest::TheProgramTakesAKeyOrItsFileAndKeepsTheKey()
{
    SignedGame game;
    auto const run = [&](QStringList const& p_Arguments) {
        return HostProcess(game, p_Arguments).Finish();
    };
    auto const info = [&](QStringList const& p_Options) {
        return JsonReport(run(p_Options + QStringList{"--json", "info"}).Out).Last();
    };
    QString const key = game.Publisher.Key();
    QCOMPARE(info({})["documents"].toString(), QString("unsigned"));
    QVERIFY(run({"info"}).Out.contains(QRegularExpression("Documents: +unsigned\n")));
    QCOMPARE(info({"--trust-key", key})["trustKey"].toString(), key);
    QString const file = game.Base + "game.pub";
    QVERIFY(WriteFile(file, game.Publisher.Secret.Public().ToFileText()));
    QCOMPARE(run({"config", "trust-key", file}).Status, 0);
    QVERIFY(QFile::remove(file));
    QCOMPARE(info({})["trustKey"].toString(), key);
    QCOMPARE(info({})["documents"].toString(), QString("signed"));
    QCOMPARE(run({"--trust-key", file, "info"}).Status, 2);

    game.Server.Remove(game.Content.ManifestPath() + ".minisig");
    Outcome const outcome = run({"--json", "install", game.Folder});
    QCOMPARE(outcome.Status, 10);
    QJsonObject const error = JsonReport(outcome.Out).Last();
    QCOMPARE(error["error"].toString(), QString("signature-missing"));
    QCOMPARE(error["text"].toString(), QStringLiteral("%1 is not signed (HTTP status 404)")
                                           .arg(game.Server.Url(game.Content.ManifestPath())));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostTrustTest)
#include "tst_HostTrust.moc"
