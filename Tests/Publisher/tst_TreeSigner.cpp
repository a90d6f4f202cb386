#include "Publisher/Publication/BuildPruning.hpp"
#include "Publisher/Publication/BuildRollback.hpp"
#include "Publisher/Publication/ServerLists.hpp"
#include "Publisher/Publication/TreeAdoption.hpp"
#include "Publisher/Signatures/TreeSigner.hpp"
#include "Publisher/Tree/TreeMark.hpp"
#include "Publisher/Tree/TreeTransaction.hpp"
#include "Publisher/Verification/TreeVerification.hpp"
#include "Tests/Publisher/BuildSeries.hpp"
#include "Tests/Publisher/FailureOf.hpp"
#include "Tests/Publisher/SigningKeys.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

using namespace Publisher;
using Role = Signing::TrustedComment::Role;

class TreeSignerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void ABuildIsSignedWithAllThatIsCurrent();
    void EveryChangeHasTheNextNumber();
    void AnEndIsThatOfWhatIsCurrentOnly();
    void AChangeThatPlayersWouldRefuseIsRefused_data();
    void AChangeThatPlayersWouldRefuseIsRefused();
    void AnUnsignedChangeThatIsWantedTakesItsSignaturesAway();
    void WhatSomebodyElseHasChangedIsNotSigned_data();
    void WhatSomebodyElseHasChangedIsNotSigned();
    void AnOldTreeIsSignedAsAWholeFirst();
    void WhatIsUnchangedButNotSignedIsPublishedAgain();
    void AChangeOfKeyIsVouchedForByTheOldOne();
    void AChangedTreeGetsNoOtherKey();
    void PruningTakesSignaturesAlong();
    void ACopyIsAdoptedWithItsNumber();
    void VerificationNamesEachFault_data();
    void VerificationNamesEachFault();

private:
    QString At(QString const& p_Path) const { return Game->OutputPath(p_Path); }
    Signing::TrustedComment CommentAt(QString const& p_Path) const;
    void SignAll(PublishedGame const& p_Game) const;
    QString ChangeRealmList(SigningOptions const& p_Options) const;
    QStringList Defects() const;

    std::unique_ptr<PublishedGame> Game;
    SigningKeys Keys;
};

namespace {

QString const c_Version = "pelmora_app/version.json";
QString const c_RealmList = "pelmora_app/realmlist.info";
QString const c_Manifest = "pelmora_app/builds/build_1/info.json";
QString const c_Hosts = "cdns.info";

void ReplaceHosts(PublishedGame const& p_Game, SigningOptions const& p_Options = {})
{
    ServerLists::Replace(p_Game.Options.Output, {}, {p_Game.OutputPath(c_Hosts), "a"}, p_Options);
}

} // namespace

/// A signed tree with one build.
void TreeSignerTest::init()
{
    Game = std::make_unique<PublishedGame>();
    Game->Options.RealmListAddress = "logon.example.net";
    Game->Options.Signing = Keys.Options();
    Game->Publish();
}

Signing::TrustedComment TreeSignerTest::CommentAt(QString const& p_Path) const
{
    auto const verified = Keys.Verify(At(p_Path));
    if (!verified.IsGood())
        QTest::qFail(qPrintable(p_Path + " has no good signature"), __FILE__, __LINE__);
    return verified.Comment;
}

void TreeSignerTest::SignAll(PublishedGame const& p_Game) const
{
    TreeTransaction tree(p_Game.Options.Output);
    TreeSigner(p_Game.Options.Output, "pelmora_app", Keys.Options()).CommitAll(tree);
}

QString TreeSignerTest::ChangeRealmList(SigningOptions const& p_Options) const
{
    return FailureOf([&] {
               ServerLists::Replace(Game->Options.Output, "pelmora_app",
                                    {At(c_RealmList), "SET realmlist \"new\""}, p_Options);
           })
        .Sentence;
}

QStringList TreeSignerTest::Defects() const
{
    BuildCatalog const tree(Game->Options.Output, "pelmora_app");
    return VerifyTree(tree, nullptr, {{Keys.Secret.Public()}, "pelmora_app"}).Defects;
}

void TreeSignerTest::ABuildIsSignedWithAllThatIsCurrent()
{
    auto const version = CommentAt(c_Version);
    QCOMPARE(version.Document, Role::Version);
    QCOMPARE(version.Game, QString("pelmora_app"));
    QCOMPARE(version.Platform, QString("mac"));
    QCOMPARE(version.Channel, QString("live"));
    QCOMPARE(version.Build, QString("build_1"));
    QCOMPARE(version.Sequence, quint64(1));
    QVERIFY(qAbs(version.Time.secsTo(QDateTime::currentDateTimeUtc())) < 60);
    QVERIFY(!version.Expires);
    QCOMPARE(CommentAt(c_Manifest).Document, Role::Manifest);
    QCOMPARE(CommentAt(c_Manifest).Build, QString("build_1"));
    QCOMPARE(CommentAt(c_Manifest).Platform, QString("mac"));
    QCOMPARE(CommentAt(c_RealmList).Document, Role::RealmList);
    QCOMPARE(CommentAt(c_RealmList).Platform, QString("mac"));
    QCOMPARE(CommentAt(c_Hosts).Document, Role::Hosts);
    QCOMPARE(CommentAt(c_Hosts).Game, QString());
}

void TreeSignerTest::EveryChangeHasTheNextNumber()
{
    Game->Options.DevChannel = true;
    Game->Options.RealmListAddress.reset();
    Game->Publish("build_2");
    QCOMPARE(CommentAt("pelmora_app/version_dev.json").Channel, QString("dev"));
    QCOMPARE(CommentAt("pelmora_app/version_dev.json").Sequence, quint64(2));
    RollBack({Game->Options.Output, "pelmora_app", "build_2", false, false, Keys.Options()});
    QCOMPARE(CommentAt(c_Version).Sequence, quint64(3));
    QCOMPARE(CommentAt(c_Version).Build, QString("build_2"));
    QCOMPARE(ChangeRealmList(Keys.Options()), QString());
    // All that is current is of one age, a manifest of its own.
    for (QString const& path : {c_Version, c_RealmList, c_Hosts})
        QCOMPARE(CommentAt(path).Sequence, quint64(4));
    QCOMPARE(CommentAt(c_Manifest).Sequence, quint64(1));
    ReplaceHosts(*Game, Keys.Options());
    QCOMPARE(CommentAt(c_Hosts).Sequence, quint64(5));
    SignAll(*Game);
    QCOMPARE(CommentAt(c_Version).Sequence, quint64(6));
    QCOMPARE(Defects(), QStringList());
}

void TreeSignerTest::AnEndIsThatOfWhatIsCurrentOnly()
{
    Game->Options.Signing = Keys.Options(3);
    Game->Publish("build_2");
    for (QString const& path : {c_Version, c_RealmList, c_Hosts}) {
        auto const comment = CommentAt(path);
        QVERIFY(comment.Expires && *comment.Expires == comment.Time.addDays(3));
    }
    QVERIFY(!CommentAt("pelmora_app/builds/build_2/info.json").Expires);
}

void TreeSignerTest::AChangeThatPlayersWouldRefuseIsRefused_data()
{
    QTest::addColumn<GameChange>("Change");
    QTest::addColumn<QString>("Cure");
    auto const add = [](char const* p_Name, QString const& p_Cure, GameChange const& p_Change) {
        AddRow(p_Name, p_Change, p_Cure);
    };
    add("build", "--sign-key", [](PublishedGame& p_Game) {
        p_Game.Options.Signing = {};
        p_Game.Publish("build_2");
    });
    add("rollback", "--sign-key", [](PublishedGame& p_Game) {
        RollBack({p_Game.Options.Output, "pelmora_app", "build_1"});
    });
    add("list", "--sign-key", [](PublishedGame& p_Game) { ReplaceHosts(p_Game); });
    add("another key", "keys change",
        [](PublishedGame& p_Game) { ReplaceHosts(p_Game, SigningKeys().Options()); });
}

void TreeSignerTest::AChangeThatPlayersWouldRefuseIsRefused()
{
    QFETCH(GameChange, Change);
    QFETCH(QString, Cure);
    Tree const before = TreeOf(Game->Options.Output);
    CaughtFailure const failure = FailureOf([&] { Change(*Game); });
    QVERIFY2(failure.Sentence.contains(Cure), qPrintable(failure.Sentence));
    QCOMPARE(failure.ExitStatus, Failure::c_Usage);
    QCOMPARE(TreeOf(Game->Options.Output), before);
}

void TreeSignerTest::AnUnsignedChangeThatIsWantedTakesItsSignaturesAway()
{
    SigningOptions unsignedChange;
    unsignedChange.Unsigned = true;
    QCOMPARE(ChangeRealmList(unsignedChange), QString());
    QVERIFY(!QFile::exists(At(c_RealmList + ".minisig")));
    QVERIFY(Keys.Verify(At(c_Version)).IsGood());
    // It stays a signed tree, and its numbers go on.
    QVERIFY(ChangeRealmList({}).contains("--sign-key"));
    SignAll(*Game);
    QCOMPARE(CommentAt(c_RealmList).Sequence, quint64(2));
}

void TreeSignerTest::WhatSomebodyElseHasChangedIsNotSigned_data()
{
    QTest::addColumn<QString>("Path");
    QTest::addColumn<QByteArray>("Content");
    AddRow("version", c_Version, QByteArray("{\"build\": \"build_1\" }"));
    AddRow("manifest", c_Manifest,
           QByteArray(R"({"content":{"base_mac":[]},"streamed_content":[]})"));
    AddRow("hosts", c_Hosts, QByteArray("evil"));
    AddRow("another signature", c_Hosts + ".minisig", QByteArray("none"));
}

void TreeSignerTest::WhatSomebodyElseHasChangedIsNotSigned()
{
    QFETCH(QString, Path);
    QFETCH(QByteArray, Content);
    QVERIFY(WriteFile(At(Path), Content));
    Tree const before = TreeOf(Game->Options.Output);
    QString const document = QString(Path).remove(".minisig");
    QString const failure = ChangeRealmList(Keys.Options());
    QVERIFY2(failure.startsWith(At(document) + ": ") && failure.contains("varnholt-publish sign"),
             qPrintable(failure));
    QCOMPARE(TreeOf(Game->Options.Output), before);
}

void TreeSignerTest::AnOldTreeIsSignedAsAWholeFirst()
{
    BuildSeries const old(2);
    QVERIFY(FailureOf([&] { ReplaceHosts(old, Keys.Options()); }).Sentence.contains("sign"));
    QVERIFY(
        FailureOf([&] {
            RollBack({old.Options.Output, "pelmora_app", "build_1", false, true, Keys.Options()});
        }).Sentence.contains("varnholt-publish sign"));
    SignAll(old);
    for (QString const& path :
         {c_Version, c_Hosts, c_Manifest, QString("pelmora_app/builds/build_2/info.json")})
        QVERIFY2(Keys.Verify(old.OutputPath(path)).IsGood(), qPrintable(path));
}

void TreeSignerTest::WhatIsUnchangedButNotSignedIsPublishedAgain()
{
    Game->Options.IfChanged = true;
    QCOMPARE(Game->Publish().UnchangedBuild, QString("build_1"));
    QCOMPARE(CommentAt(c_Version).Sequence, quint64(1));
    // As a kill between the two leaves it.
    QVERIFY(WriteFile(At(c_Version + ".minisig"), Signing::Sign("other", Keys.Secret, {})));
    QCOMPARE(Game->Publish().UnchangedBuild, QString());
    QCOMPARE(CommentAt(c_Version).Sequence, quint64(2));
}

void TreeSignerTest::AChangeOfKeyIsVouchedForByTheOldOne()
{
    Game->Options.AppId = "other_app";
    Game->Options.RealmListAddress.reset();
    Game->Publish("build_2");
    SigningKeys const next;
    SigningKeys::Change(*Game, next.Secret);
    for (QString const app : {"pelmora_app", "other_app"}) {
        auto const key = CommentAt(app + "/trust-key");
        QCOMPARE(key.Document, Role::Key);
        QCOMPARE(key.Game, app);
        QCOMPARE(key.Platform, QString("mac"));
        QCOMPARE(Game->Read(app + "/trust-key"), next.Secret.Public().ToText() + '\n');
        QCOMPARE(next.Verify(At(app + "/version.json")).Comment.Sequence, quint64(3));
    }
    for (QString const& path : {c_RealmList, c_Manifest, c_Hosts})
        QVERIFY2(next.Verify(At(path)).IsGood(), qPrintable(path));
}

void TreeSignerTest::AChangedTreeGetsNoOtherKey()
{
    QVERIFY(WriteFile(At(c_Manifest), "{}"));
    Tree const before = TreeOf(Game->Options.Output);
    CaughtFailure const failure = FailureOf([&] { SigningKeys::Change(*Game); });
    QVERIFY(failure.Sentence.startsWith(At(c_Manifest) + ": is not what was signed"));
    QCOMPARE(ForClients(TreeOf(Game->Options.Output)), ForClients(before));
}

void TreeSignerTest::PruningTakesSignaturesAlong()
{
    Game->Publish("build_2");
    PruneBuilds({Game->Options.Output, "pelmora_app", 1, {}, false});
    QVERIFY(!QFile::exists(At("pelmora_app/builds/build_1")));
    QVERIFY(Keys.Verify(At("pelmora_app/builds/build_2/info.json")).IsGood());
}

void TreeSignerTest::ACopyIsAdoptedWithItsNumber()
{
    Game->Publish("build_2");
    for (auto const& [path, content] : TreeOf(Game->Options.Output)) {
        if (TreeMark::IsPrivate(path))
            QFile::remove(At(path));
    }
    auto const adopt = [&](std::optional<Signing::PublicKey> const& p_Key) {
        return FailureOf(
                   [&] { AdoptTree(Game->Options.Output, "pelmora_app", p_Key, Game->Observer); })
            .Sentence;
    };
    QVERIFY(adopt({}).contains("--trust-key"));
    QVERIFY(adopt(SigningKeys().Secret.Public()).contains("another key"));
    QCOMPARE(adopt(Keys.Secret.Public()), QString());
    QVERIFY(ChangeRealmList({}).contains("--sign-key"));
    QCOMPARE(ChangeRealmList(Keys.Options()), QString());
    QCOMPARE(CommentAt(c_Version).Sequence, quint64(3));
}

void TreeSignerTest::VerificationNamesEachFault_data()
{
    QTest::addColumn<GameChange>("Change");
    QTest::addColumn<QString>("Defect");
    auto const add = [](char const* p_Name, QString const& p_Defect, GameChange const& p_Change) {
        AddRow(p_Name, p_Change, p_Defect);
    };
    auto const put = [](QString const& p_Path, QByteArray const& p_Content) -> GameChange {
        return [=](PublishedGame& p_Game) {
            QVERIFY(WriteFile(p_Game.OutputPath(p_Path), p_Content));
        };
    };
    add("nothing", {}, [](PublishedGame&) {});
    add("changed list", "cdns.info: is not what was signed", put(c_Hosts, "evil"));
    add("no signature", "realmlist.info: has no signature", put(c_RealmList + ".minisig", ""));
    add("of the other channel", "version.json: is signed as something else",
        [](PublishedGame& p_Game) {
            p_Game.Options.DevChannel = true;
            p_Game.Options.RealmListAddress.reset();
            p_Game.Publish("build_2");
            for (char const* const end : {"", ".minisig"})
                QVERIFY(WriteFile(p_Game.OutputPath(c_Version + end),
                                  p_Game.Read("pelmora_app/version_dev.json" + QString(end))));
        });
    add("expired", "its signature was good until ",
        [options = Keys.Options(-1)](PublishedGame& p_Game) { ReplaceHosts(p_Game, options); });
}

void TreeSignerTest::VerificationNamesEachFault()
{
    QFETCH(GameChange, Change);
    QFETCH(QString, Defect);
    Change(*Game);
    QString const defects = Defects().join('\n');
    QVERIFY2(Defect.isEmpty() ? defects.isEmpty() : defects.contains(Defect), qPrintable(defects));
}

} // namespace Varnholt::TestSupport

#include "tst_TreeSigner.moc"

VARNHOLT_TEST(Varnholt::TestSupport::TreeSignerTest)
