#include "GameModules/MirrorChoice.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <cstdlib>

namespace Varnholt::Launcher {

class MirrorChoiceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void DrawsWithTheStandardGeneratorWhichItDoesNotSeed();
    void AnEmptyListGivesNoHostAndTheDefaultServerStandsIn();
    void ABlankHostIsReplacedByTheDefaultServer();
    void EntriesOfTheDefaultServerNeverGoToAMirror();
    void EveryDrawIsFresh();
    void OnlyWhatCouldHaveBeenChosenMayServe();
};

void MirrorChoiceTest::init()
{
    qputenv("VARNHOLT_CONTENT_BASE_URL", "http://default/");
}

void MirrorChoiceTest::DrawsWithTheStandardGeneratorWhichItDoesNotSeed()
{
    QStringList const hosts{"a", "b", "c"};
    std::srand(7);
    QStringList expected;
    for (int i = 0; i < 20; ++i)
        expected += hosts[std::rand() % hosts.size()];
    std::srand(7);
    QStringList drawn;
    for (int i = 0; i < 20; ++i)
        drawn += MirrorChoice::DrawHost(hosts);
    QCOMPARE(drawn, expected);
}

void MirrorChoiceTest::AnEmptyListGivesNoHostAndTheDefaultServerStandsIn()
{
    QVERIFY(MirrorChoice::DrawHost({}).isNull());
    QCOMPARE(MirrorChoice::BaseUrlFor({}, {}), QString("http://default/"));
}

void MirrorChoiceTest::ABlankHostIsReplacedByTheDefaultServer()
{
    QCOMPARE(MirrorChoice::BaseUrlFor({}, {""}), QString("http://default/"));
    QCOMPARE(MirrorChoice::BaseUrlOf(""), QString("http:///"));
}

void MirrorChoiceTest::EntriesOfTheDefaultServerNeverGoToAMirror()
{
    ApplicationManifestFileEntry entry;
    entry.Flags = 0x40;
    for (int i = 0; i < 10; ++i)
        QCOMPARE(MirrorChoice::BaseUrlFor(entry, {"mirror"}), QString("http://default/"));
    entry.Flags = ~0x40;
    QCOMPARE(MirrorChoice::BaseUrlFor(entry, {"mirror:81"}), QString("http://mirror:81/"));
}

void MirrorChoiceTest::EveryDrawIsFresh()
{
    std::srand(1);
    std::map<QString, int> drawn;
    for (int i = 0; i < 1000; ++i)
        ++drawn[MirrorChoice::BaseUrlFor({}, {"a", "b"})];
    QVERIFY(drawn["http://a/"] > 400 && drawn["http://b/"] > 400);
}

void MirrorChoiceTest::OnlyWhatCouldHaveBeenChosenMayServe()
{
    using MirrorChoice::MayServe;
    QStringList const hosts{"a", "b"};
    QVERIFY(MayServe("http://a/", {}, hosts));
    QVERIFY(MayServe("http://b/", {}, hosts));
    QVERIFY(!MayServe("http://c/", {}, hosts));
    QVERIFY(!MayServe("http://default/", {}, hosts));
    QVERIFY(MayServe("http://default/", {}, {}));
    QVERIFY(MayServe("http://default/", {}, {"a", ""}));
    QVERIFY(!MayServe("http:///", {}, {""}));
    QVERIFY(MayServe("http://default/", {}, {"default"}));
    ApplicationManifestFileEntry entry;
    entry.Flags = 0x40;
    QVERIFY(MayServe("http://default/", entry, hosts));
    QVERIFY(!MayServe("http://a/", entry, hosts));
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::MirrorChoiceTest)
#include "tst_MirrorChoice.moc"
