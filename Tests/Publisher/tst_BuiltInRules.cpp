#include "Launcher/Application/ApplicationManifest.hpp"
#include "Publisher/Rules/BuiltInRules.hpp"
#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

Q_DECLARE_METATYPE(Varnholt::Publisher::ContentPlatform)

namespace Varnholt::Publisher {

using TestSupport::AddRow;
using Entry = Launcher::ApplicationManifestFileEntry;

/// What is published when no rules file is given.
class BuiltInRulesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheGamesExecutableIsKnown_data();
    void TheGamesExecutableIsKnown();
    void OtherProgramsOfABundleAreExecutable();
    void LanguagesHaveTheirFolders();
    void WhatPlayersAndSystemsLeaveIsNotPublished_data();
    void WhatPlayersAndSystemsLeaveIsNotPublished();
    void OtherFilesArePlain_data();
    void OtherFilesArePlain();
    void AGameIsPublishedWithoutARulesFile();
    void ARulesFileKeepsWhatPlayersLeaveOut();
    void ARuleThatNamesThePathPublishesIt_data();
    void ARuleThatNamesThePathPublishesIt();
};

void BuiltInRulesTest::TheGamesExecutableIsKnown_data()
{
    QTest::addColumn<ContentPlatform>("platform");
    QTest::addColumn<QString>("path");
    QTest::addColumn<qint32>("flags");
    AddRow("mac", ContentPlatform::Mac, "World of Warcraft.app/Contents/MacOS/World of Warcraft",
           qint32(Entry::Executable | Entry::MacGameExecutable));
    AddRow("win", ContentPlatform::Windows, "Wow-64.exe", qint32(Entry::WindowsGameExecutable));
}

void BuiltInRulesTest::TheGamesExecutableIsKnown()
{
    QFETCH(ContentPlatform, platform);
    QFETCH(QString, path);
    QFETCH(qint32, flags);
    RuleSet const rules = BuiltInRules(platform, {});
    QCOMPARE(rules.TreatmentOf(path).Flags, flags);
    QCOMPARE(rules.TreatmentOf("Data/" + path).Flags & flags & ~Entry::Executable, 0);
}

void BuiltInRulesTest::OtherProgramsOfABundleAreExecutable()
{
    RuleSet const rules = BuiltInRules(ContentPlatform::Mac, {});
    for (char const* const path :
         {"Tool.app/Contents/MacOS/Tool", "a/b/Repair.app/Contents/MacOS/x"})
        QCOMPARE(rules.TreatmentOf(path).Flags, qint32(Entry::Executable));
    QCOMPARE(rules.TreatmentOf("Tool.app/Contents/Info.plist").Flags, 0);
}

void BuiltInRulesTest::LanguagesHaveTheirFolders()
{
    RuleSet const rules = BuiltInRules(ContentPlatform::Mac, {{"frFR", "F"}, {"deDE", "D"}});
    QCOMPARE(rules.Locales.at("frFR"), QString("F"));
    QCOMPARE(rules.TreatmentOf("Data/frFR/a/b").Locale, QString("frFR"));
    QCOMPARE(rules.TreatmentOf("Data/deDE/a").Locale, QString("deDE"));
    for (char const* const path : {"Data/enUS/a", "Data/a", "frFR/a", "Data/frFR"})
        QCOMPARE(rules.TreatmentOf(path).Locale, QString());
}

void BuiltInRulesTest::WhatPlayersAndSystemsLeaveIsNotPublished_data()
{
    QTest::addColumn<QString>("path");
    for (char const* const path :
         {"WTF/Config.wtf", "WTF/Account/ME/x", "Cache/x", "Logs/x", "Errors/x", "Screenshots/x",
          "Interface/GlueXMl/AccountLogin.xml", "Interface/GlueXMl/AccountLogin.lua", ".DS_Store",
          "Data/.DS_Store", "Data/._a", "Data/Thumbs.db", "desktop.ini", "Data/a.part",
          ".varnholt-host.lock"})
        AddRow(path, QString(path));
}

void BuiltInRulesTest::WhatPlayersAndSystemsLeaveIsNotPublished()
{
    QFETCH(QString, path);
    for (ContentPlatform const platform : {ContentPlatform::Mac, ContentPlatform::Windows})
        QVERIFY(BuiltInRules(platform, {}).TreatmentOf(path).Excluded);
}

void BuiltInRulesTest::OtherFilesArePlain_data()
{
    QTest::addColumn<QString>("path");
    for (char const* const path : {"Data/common.MPQ", "Data/WTF/a", "Data/Cache/a", "WTF",
                                   "Interface/GlueXMl/AccountLogin.xml.origin", "Data/a.partial"})
        AddRow(path, QString(path));
}

void BuiltInRulesTest::OtherFilesArePlain()
{
    QFETCH(QString, path);
    FileTreatment const treatment =
        BuiltInRules(ContentPlatform::Mac, {{"frFR", "F"}}).TreatmentOf(path);
    QCOMPARE(treatment.Flags, 0);
    QCOMPARE(treatment.Locale, QString());
    QVERIFY(!treatment.Streamed);
    QVERIFY(!treatment.Excluded);
}

void BuiltInRulesTest::AGameIsPublishedWithoutARulesFile()
{
    TestSupport::PublishedGame game;
    game.Options.RulesFile.clear();
    QVERIFY(game.FailureSentence().endsWith(
        ": no file has the flag game-executable: give it to the game's executable in the rules "
        "file"));
    game.Put("World of Warcraft.app/Contents/MacOS/World of Warcraft", "x");
    game.Put("WTF/Config.wtf", "of the operator");
    game.Publish();
    QVERIFY(game.Published().count(game.ContentPath("x")) == 1);
    QVERIFY(game.Published().count(game.ContentPath("of the operator")) == 0);
}

void BuiltInRulesTest::ARulesFileKeepsWhatPlayersLeaveOut()
{
    TestSupport::PublishedGame game;
    QStringList const left{"WTF/Config.wtf", "Interface/GlueXMl/AccountLogin.xml", "a.part"};
    for (QString const& path : left)
        game.Put(path, path.toUtf8());
    game.AddRules(R"({"match": "**", "exclude": false}, {"match": "WTF/**", "streamed": true})");
    QCOMPARE(game.Publish().Files, 1);
    for (QString const& path : left)
        QCOMPARE(game.Published().count(game.ContentPath(path.toUtf8())), std::size_t(0));
}

void BuiltInRulesTest::ARuleThatNamesThePathPublishesIt_data()
{
    QTest::addColumn<QByteArray>("rule");
    QTest::addColumn<bool>("published");
    AddRow("treated", QByteArray(R"("flags": ["keep-if-present"])"), true);
    AddRow("not excluded", QByteArray(R"("exclude": false)"), true);
    AddRow("excluded", QByteArray(R"("exclude": true)"), false);
}

void BuiltInRulesTest::ARuleThatNamesThePathPublishesIt()
{
    QFETCH(QByteArray, rule);
    QFETCH(bool, published);
    TestSupport::PublishedGame game;
    game.Put("WTF/Config.wtf", "of the build");
    game.AddRules(R"({"match": "WTF/Config.wtf", )" + rule + '}');
    game.Publish();
    QCOMPARE(game.Published().count(game.ContentPath("of the build")) == 1, published);
}

} // namespace Varnholt::Publisher

VARNHOLT_TEST(Varnholt::Publisher::BuiltInRulesTest)
#include "tst_BuiltInRules.moc"
