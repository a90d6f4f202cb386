#include "Tests/Hostile/HostileGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QRegularExpression>
#include <QtTest>

#include <map>

namespace Varnholt::TestSupport {

/// Symbolic links in the places of what the module writes itself: partial files, lists, the
/// configuration, the login screen.
class HostileOwnLinksTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void LinksInTheirPlacesGiveWay_data();
    void LinksInTheirPlacesGiveWay();
    void AListThatIsALinkIsNotBelieved();
    void AConfigurationInAFolderThatALinkLeadsOutKeepsItsLines();
    void AConfigurationThatALinkKeepsInsideIsWrittenThere();
    void TheLoginScreenIsBuiltInThePlaceOfALink_data();
    void TheLoginScreenIsBuiltInThePlaceOfALink();
    void ATemplateThatALinkLeadsOutIsNotRead();
    void ALoginScreenWhoseFolderALinkLeadsOutIsLeftAlone();
    void TheOtherClientIsNotMovedThroughALink();
};

void HostileOwnLinksTest::LinksInTheirPlacesGiveWay_data()
{
    QTest::addColumn<bool>("ToNothing");
    QTest::newRow("to files") << false;
    QTest::newRow("to nothing") << true;
}

void HostileOwnLinksTest::LinksInTheirPlacesGiveWay()
{
    QFETCH(bool, ToNothing);
    HostileGame game;
    std::map<QString, QString> const links{
        {"Data/base.MPQ.part", "base.MPQ"},         {"Data/first build.MPQ.part", "base.MPQ"},
        {"Data/streamed 1.MPQ.part", "base.MPQ"},   {"ToDownload.db", "ToDownload.db"},
        {"ToDownloadBase.db", "ToDownloadBase.db"}, {"WTF/Config.wtf", "Config.wtf"}};
    auto const link = [&] {
        for (auto const& row : links)
            game.Link(row.first, game.Outside.Path(ToNothing ? "none" : row.second));
    };
    link();
    game.Begin();
    QCOMPARE(game.InstallOver(), QString("done"));
    QCOMPARE(game.Disturbances(), QStringList());
    QCOMPARE(game.Wrong(), QStringList());
    for (auto const& row : links)
        QVERIFY(!QFileInfo(game.Path(row.first)).isSymbolicLink());
    QCOMPARE(game.Read("WTF/Config.wtf"),
             "SET locale \"enUS\"\nSET installLocale \"enUS\"\n" + game.Content.RealmList + '\n');
    link();
    for (RequestType const kind : {RequestType::Update, RequestType::Check, RequestType::Repair})
        QCOMPARE(game.Run(kind), QString("done"));
    link();
    QCOMPARE(game.Uninstall(), QString("done"));
    QCOMPARE(game.Disturbances(), QStringList());
}

void HostileOwnLinksTest::AListThatIsALinkIsNotBelieved()
{
    HostileGame game;
    game.Begin();
    QCOMPARE(game.Install(), QString("done"));
    game.Put("list", "Data/streamed 1.MPQ\n");
    game.Link("ToDownload.db", "list");
    game.ForgetRequests();
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Requested().filter("streamed"), QStringList());
}

void HostileOwnLinksTest::AConfigurationInAFolderThatALinkLeadsOutKeepsItsLines()
{
    HostileGame game;
    game.Link("WTF", game.Outside.Path());
    game.Begin();
    QCOMPARE(game.InstallOver(), QString("done"));
    QCOMPARE(game.Disturbances(), QStringList());
    QCOMPARE(game.Log.CountContaining("leaves \"WTF/Config.wtf\" alone"), 1);
    QCOMPARE(game.Run(RequestType::ChooseLocale, "frFR"), QString("done"));
    QCOMPARE(game.Uninstall(), QString("done"));
    QCOMPARE(game.Disturbances(), QStringList());
}

void HostileOwnLinksTest::AConfigurationThatALinkKeepsInsideIsWrittenThere()
{
    HostileGame game;
    game.Put("settings", "SET gxWindow \"1\"\n");
    game.Link("WTF/Config.wtf", "../settings");
    game.Begin();
    QCOMPARE(game.InstallOver(), QString("done"));
    QVERIFY(QFileInfo(game.Path("WTF/Config.wtf")).isSymbolicLink());
    QVERIFY(game.Read("settings").startsWith("SET gxWindow \"1\"\nSET locale"));
}

void HostileOwnLinksTest::TheLoginScreenIsBuiltInThePlaceOfALink_data()
{
    QTest::addColumn<QString>("Target");
    QTest::newRow("to a file") << "AccountLogin.xml";
    QTest::newRow("to nothing") << "none";
}

void HostileOwnLinksTest::TheLoginScreenIsBuiltInThePlaceOfALink()
{
    QFETCH(QString, Target);
    QString const folder = "Interface/GlueXMl/";
    HostileGame game;
    game.Begin();
    QCOMPARE(game.Install(), QString("done"));
    for (char const* const name : {"AccountLogin.xml", "AccountLogin.lua"})
        game.Link(folder + name, game.Outside.Path(Target));
    QCOMPARE(game.Play(), QString("done"));
    QCOMPARE(game.Disturbances(), QStringList());
    QCOMPARE(game.Read(folder + "AccountLogin.xml"), QByteArray("account"));
    QCOMPARE(game.Read(folder + "AccountLogin.lua"), QByteArray("{varnholt_autolog_login}"));
    QVERIFY(!QFileInfo(game.Path(folder + "AccountLogin.xml")).isSymbolicLink());
}

void HostileOwnLinksTest::ATemplateThatALinkLeadsOutIsNotRead()
{
    QString const folder = "Interface/GlueXMl/";
    for (char const* const name : {"AccountLogin.xml", "AccountLogin.lua"}) {
        HostileGame game;
        game.Begin();
        QCOMPARE(game.Install(), QString("done"));
        game.Link(folder + name + ".origin", game.Outside.Path(QString(name) + ".origin"));
        game.Put(folder + "AccountLogin.xml", "of an earlier start");
        QCOMPARE(game.Play(), QString("done"));
        QCOMPARE(game.Disturbances(), QStringList());
        QVERIFY(!game.Has(folder + "AccountLogin.xml"));
        QVERIFY(!game.Has(folder + "AccountLogin.lua"));
    }
}

void HostileOwnLinksTest::ALoginScreenWhoseFolderALinkLeadsOutIsLeftAlone()
{
    for (char const* const link : {"Interface", "Interface/GlueXMl"}) {
        HostileGame game;
        QVERIFY(WriteFile(game.Outside.Path("GlueXMl/AccountLogin.xml"), "the user's own"));
        game.Begin();
        QCOMPARE(game.Install(), QString("done"));
        game.Link(link, game.Outside.Path());
        QCOMPARE(game.Play(), QString("done"));
        game.Uninstall();
        // The templates are the build's, the screens are not, not even where the player's link is
        // followed for the build's files.
        QCOMPARE(game.Disturbances().filter(QRegularExpression("AccountLogin\\.(xml|lua)$")),
                 QStringList());
        QVERIFY(QFile::exists(game.Outside.Path("AccountLogin.xml")));
        QCOMPARE(ReadFile(game.Outside.Path("GlueXMl/AccountLogin.xml")),
                 QByteArray("the user's own"));
    }
}

void HostileOwnLinksTest::TheOtherClientIsNotMovedThroughALink()
{
    HostileGame game;
    game.Begin();
    QCOMPARE(game.Install(), QString("done"));
    game.Put("Wow-64.exe", "client");
    game.Link("Wow-64.exe.disabled", game.Outside.Path("none"));
    QCOMPARE(game.Play(), QString("done"));
    game.Link("Wow-64.exe", game.Outside.Path("program"));
    QCOMPARE(game.Play(), QString("done"));
    QCOMPARE(game.Disturbances(), QStringList());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostileOwnLinksTest)
#include "tst_HostileOwnLinks.moc"
