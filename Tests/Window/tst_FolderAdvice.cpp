#include "Host/Window/Dialogs/FolderAdvice.hpp"
#include "Tests/Support/TestMain.hpp"

Q_DECLARE_METATYPE(Varnholt::Host::FailureKind)

namespace Varnholt::TestSupport {

using Host::FailureKind;
using Host::FolderAdvice;

/// What a player is told of a folder.
class FolderAdviceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AFolderOfTheGamesOwnIsProposed();
    void WarningsForbidOrAsk_data();
    void WarningsForbidOrAsk();
    void OneThatForbidsIsEnough();
    void NothingSpeaksAgainstAGoodFolder();
};

void FolderAdviceTest::AFolderOfTheGamesOwnIsProposed()
{
    QCOMPARE(FolderAdvice::Proposal("/home/me", "Mists"), QString("/home/me/Games/Mists"));
    QCOMPARE(FolderAdvice::Inside("/data/", "A/B: C "), QString("/data/A-B- C"));
}

void FolderAdviceTest::WarningsForbidOrAsk_data()
{
    QTest::addColumn<FailureKind>("kind");
    QTest::addColumn<bool>("forbids");
    QTest::addColumn<bool>("shared");
    QTest::addColumn<QString>("says");
    AddRow("a file", FailureKind::FolderIsFile, true, false, QString("is a file"));
    AddRow("home", FailureKind::FolderForbidden, true, true, QString("DETAIL"));
    AddRow("read only", FailureKind::FolderUnwritable, true, false, QString("DETAIL"));
    AddRow("other files", FailureKind::FolderForeign, false, true, QString("not empty"));
    AddRow("elsewhere", FailureKind::InstalledElsewhere, false, false, QString("/subject"));
    AddRow("no room", FailureKind::DiskFull, true, false, QString("DETAIL"));
    AddRow("anything else", FailureKind::LinkLeadsOut, true, false, QString("/subject"));
}

void FolderAdviceTest::WarningsForbidOrAsk()
{
    QFETCH(FailureKind, kind);
    QFETCH(QString, says);
    FolderAdvice const advice({{kind, "/subject", "DETAIL"}});
    QCOMPARE(advice.Points().size(), std::size_t(1));
    QTEST(advice.Points()[0].Forbids, "forbids");
    QTEST(!advice.IsPossible(), "forbids");
    QTEST(advice.IsShared(), "shared");
    QString const text = advice.Points()[0].Text;
    QVERIFY2(text.contains(says) && text.endsWith('.') && text[0].isUpper(), qPrintable(text));
}

void FolderAdviceTest::OneThatForbidsIsEnough()
{
    FolderAdvice const advice(
        {{FailureKind::FolderForeign, "/x", {}}, {FailureKind::DiskFull, "/x", "little"}});
    QCOMPARE(advice.Points().size(), std::size_t(2));
    QVERIFY(!advice.IsPossible());
}

void FolderAdviceTest::NothingSpeaksAgainstAGoodFolder()
{
    QVERIFY(FolderAdvice(std::vector<Host::Failure>()).IsPossible());
    QVERIFY(FolderAdvice(std::vector<Host::Failure>()).Points().empty());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::FolderAdviceTest)
#include "tst_FolderAdvice.moc"
