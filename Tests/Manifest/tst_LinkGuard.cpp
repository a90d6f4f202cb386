#include "GameModules/FileLink.hpp"
#include "GameModules/LinkGuard.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/OrdinaryUser.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::TestSupport {

using Launcher::LinkGuard;

class LinkGuardTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void KnowsWhatALinkLeadsOut_data();
    void KnowsWhatALinkLeadsOut();
    void FollowsThePlayersFoldersToTheBuildsFiles_data();
    void FollowsThePlayersFoldersToTheBuildsFiles();
    void FollowsNoFolderOfAnothersThatLeadsOut();
    void KnowsWhoseALinkInAFilesPlaceIs();
    void APathOfThousandsOfFoldersIsWalkedThrough();
    void NamesTheLinkAndWhereItLeads();
    void AFolderThatIsNotThereHasNoLinks();
    void TheFolderMayBeReachedByALink();
    void AFileIsLookedAtEachTime();

private:
    QString Folder() const { return Base + "game/"; }

    std::unique_ptr<QTemporaryDir> Temporary;
    QString Base;
};

/// Every kind of link below "game", and what they lead to.
void LinkGuardTest::init()
{
    Temporary = std::make_unique<QTemporaryDir>();
    Base = QDir(Temporary->path()).canonicalPath() + '/';
    for (char const* const file : {"game/file", "game/deep/below/file", "outside/file",
                                   "game beside/file", "game/inside/file", "outside/below/file"})
        QVERIFY(WriteFile(Base + file, "x"));
    auto const link = [this](QString const& p_Target, QString const& p_Name) {
        return QFile::link(p_Target, Folder() + p_Name);
    };
    QVERIFY(link(Base + "outside", "out"));
    QVERIFY(link("../outside", "out-relative"));
    QVERIFY(link("..", "above"));
    QVERIFY(link("/", "root"));
    QVERIFY(link(Base + "game beside", "beside"));
    QVERIFY(link("out", "out-twice"));
    QVERIFY(link("none", "dangling"));
    QVERIFY(link("circle", "circle"));
    QVERIFY(link("circle-b", "circle-a") && link("circle-a", "circle-b"));
    QVERIFY(link("deep/below", "in"));
    QVERIFY(link("../game/deep", "in-by-detour"));
    QVERIFY(link(".", "itself"));
    QVERIFY(link("../outside/file", "file-out"));
    QVERIFY(link("deep/below/file", "file-in"));
    QVERIFY(link("../out", "deep/out-by-another"));
}

void LinkGuardTest::KnowsWhatALinkLeadsOut_data()
{
    QTest::addColumn<QString>("Path");
    QTest::addColumn<bool>("LeadsOut");
    for (char const* const path :
         {"out/file", "out/none", "out", "out/", "out-relative/file", "above/game/file", "root/etc",
          "beside/file", "out-twice/file", "dangling", "dangling/file", "circle", "circle/file",
          "circle-a/file", "file-out", "deep/out-by-another/file", "out/deep/../file",
          "itself/out/file", ".//out//file", "in/../../out/file",
          // Behind a link to a folder, ".." is the parent of the target, not of the link.
          "itself/../outside/file", "in-by-detour/../../outside/file", "itself/../none/file"})
        QTest::newRow(path) << path << true;
    for (char const* const path :
         {"file", "none", "none/at/all", "deep/below/file", "in/file", "in/none",
          "in/../below/file", "in-by-detour/below/file", "itself/file", "itself/itself/deep/none",
          "file-in", "none/../file", "deep/./below//file", "deep/../file"})
        QTest::newRow(path) << path << false;
}

void LinkGuardTest::KnowsWhatALinkLeadsOut()
{
    QFETCH(QString, Path);
    QFETCH(bool, LeadsOut);
    LinkGuard guard(Folder());
    QCOMPARE(guard.LeadingOut(Path).has_value(), LeadsOut);
    QCOMPARE(guard.LeadingOut(Path).has_value(), LeadsOut);
}

void LinkGuardTest::FollowsThePlayersFoldersToTheBuildsFiles_data()
{
    QTest::addColumn<QString>("Path");
    QTest::addColumn<bool>("IsFollowed");
    for (char const* const path :
         {"out/file", "out/none", "out-relative/file", "above/game/file", "root/etc", "beside/file",
          "out-twice/file", "deep/out-by-another/file", "itself/out/file", ".//out//file",
          // What stands in the place of the file itself is not looked at.
          "out", "dangling", "circle", "file-out",
          // Inside, as before.
          "file", "none/at/all", "in/file", "in/../below/file", "in/../../out/file",
          "itself/itself/deep/none"})
        QTest::newRow(path) << path << true;
    for (char const* const path : {"dangling/file", "circle/file", "circle-a/file", "file-out/file",
                                   // Above what is followed there is no build.
                                   "out/../file", "out/below/../file", "itself/../outside/file"})
        QTest::newRow(path) << path << false;
}

void LinkGuardTest::FollowsThePlayersFoldersToTheBuildsFiles()
{
    QFETCH(QString, Path);
    QFETCH(bool, IsFollowed);
    LinkGuard guard(Folder());
    QCOMPARE(!guard.OnTheWay(Path), IsFollowed);
    QCOMPARE(!guard.OnTheWay(Path), IsFollowed);
}

void LinkGuardTest::FollowsNoFolderOfAnothersThatLeadsOut()
{
    for (char const* const link : {"out", "in"})
        if (!GiveLinkToAnother(Folder() + link))
            QSKIP("only root can give a link to another user");
    LinkGuard guard(Folder());
    auto const link = guard.OnTheWay("out/file");
    QVERIFY(link);
    QCOMPARE(link->Path, Folder() + "out");
    QCOMPARE(link->Target, Base + "outside");
    QVERIFY(guard.OnTheWay("deep/out-by-another/../../out/file"));
    QVERIFY(!guard.OnTheWay("in/file")); // stays inside
}

void LinkGuardTest::KnowsWhoseALinkInAFilesPlaceIs()
{
    using Launcher::FileLink::At;
    using Launcher::FileLink::Kind;

    for (char const* const path : {"file", "none", "deep", "out/file"})
        QCOMPARE(At(Folder() + path), Kind::None);
    for (char const* const path : {"file-in", "file-out"})
        QCOMPARE(At(Folder() + path), Kind::Players);
    for (char const* const path : {"out", "dangling", "circle"}) // lead to no file
        QCOMPARE(At(Folder() + path), Kind::Strange);
    for (char const* const path : {"file", "out/file", "file-in", "file-out"})
        QVERIFY2(Launcher::FileLink::IsFile(Folder() + path), path);
    for (char const* const path : {"none", "deep", "in", "dangling", "circle"})
        QVERIFY2(!Launcher::FileLink::IsFile(Folder() + path), path);
    if (!GiveLinkToAnother(Folder() + "file-in"))
        QSKIP("only root can give a link to another user");
    QCOMPARE(At(Folder() + "file-in"), Kind::Strange);
    QVERIFY(SetMode(Base, 0755));
    OrdinaryUser const user;
    QCOMPARE(At(Folder() + "file-in"), Kind::Players);
    QCOMPARE(At(Folder() + "file-out"), Kind::Players); // root's
}

void LinkGuardTest::APathOfThousandsOfFoldersIsWalkedThrough()
{
    LinkGuard guard(Folder());
    QString const deep = QString("a/").repeated(20'000);
    QVERIFY(!guard.OnTheWay(deep + "file"));
    QVERIFY(!guard.LeadingOut(deep + "file"));
    QVERIFY(guard.OnTheWay("dangling/" + deep + "file"));
}

void LinkGuardTest::NamesTheLinkAndWhereItLeads()
{
    LinkGuard guard(Folder());
    auto const named = [&](QString const& p_Path) {
        auto const link = guard.LeadingOut(p_Path);
        return link ? link->Path.mid(Folder().size()) + " > " + link->Target : QString();
    };
    QCOMPARE(named("out/deep/file"), "out > " + Base + "outside");
    QCOMPARE(named("deep/out-by-another/file"), "deep/out-by-another > " + Base + "outside");
    QCOMPARE(named("file-out"), "file-out > " + Base + "outside/file");
    QCOMPARE(named("dangling"), "dangling > " + Folder() + "none");
}

void LinkGuardTest::AFolderThatIsNotThereHasNoLinks()
{
    QVERIFY(!LinkGuard(Base + "none/").LeadingOut("a/b"));
    QVERIFY(!LinkGuard().LeadingOut("a/b"));
}

void LinkGuardTest::TheFolderMayBeReachedByALink()
{
    QVERIFY(QFile::link("game", Base + "link"));
    LinkGuard guard(Base + "link/");
    QVERIFY(!guard.LeadingOut("in/file"));
    QVERIFY(guard.LeadingOut("out/file"));
}

void LinkGuardTest::AFileIsLookedAtEachTime()
{
    LinkGuard guard(Folder());
    QVERIFY(!guard.LeadingOut("deep/file"));
    QVERIFY(QFile::link("../../outside/file", Folder() + "deep/file"));
    QVERIFY(guard.LeadingOut("deep/file"));
    QVERIFY(QFile::remove(Folder() + "deep/file"));
    QVERIFY(!guard.LeadingOut("deep/file"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::LinkGuardTest)
#include "tst_LinkGuard.moc"
