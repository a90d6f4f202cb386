#include "Tests/Host/HostProcess.hpp"
#include "Tests/Host/JsonReport.hpp"
#include "Tests/Support/FileTools.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

/// The module's log in a file of the user's.
class HostLogFileTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { Game.reset(); }

    void EveryLineHasItsTimeAndItsCategory();
    void ASecondRunAppends();
    void TheLogIsShownOnlyToWhoAsks();
    void AFileThatCannotBeWrittenIsToldAndTheRunGoesOn();
    void StandardOutputStaysJsonWithoutTheFile();

private:
    Outcome Locales(QStringList const& p_Options) const
    {
        return HostProcess(*Game, QStringList("locales") + p_Options).Finish();
    }
    QStringList Lines() const
    {
        return QString::fromUtf8(ReadFile(Game->Base + "host.log")).split('\n', Qt::SkipEmptyParts);
    }

    std::unique_ptr<HostGame> Game;
};

void HostLogFileTest::init()
{
    Game = std::make_unique<HostGame>();
    Game->AddFiles().Publish();
}

void HostLogFileTest::EveryLineHasItsTimeAndItsCategory()
{
    QCOMPARE(Locales({"--log-file", "host.log"}).Status, 0);
    QVERIFY(!Lines().isEmpty());
    QRegularExpression const form(
        "^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}Z \\[[^\\]]+\\] .");
    for (QString const& line : Lines())
        QVERIFY2(form.match(line).hasMatch(), qPrintable(line));
    QVERIFY(!Lines().filter("[varnholt.").isEmpty());
}

void HostLogFileTest::ASecondRunAppends()
{
    QVERIFY(WriteFile(Game->Base + "host.log", "the user's\n"));
    QCOMPARE(Locales({"--log-file", "host.log"}).Status, 0);
    int const first = Lines().size();
    QVERIFY(first > 1);
    QCOMPARE(Lines()[0], QString("the user's"));
    QStringList const before = Lines();
    QCOMPARE(Locales({"--log-file", "host.log"}).Status, 0);
    QVERIFY(Lines().size() > first);
    QCOMPARE(QStringList(Lines().mid(0, first)), before);
}

void HostLogFileTest::TheLogIsShownOnlyToWhoAsks()
{
    Outcome const plain = Locales({"--log-file", "host.log"});
    QVERIFY2(!plain.Err.contains("[varnholt."), qPrintable(plain.Err));
    QStringList const written = Lines().filter("[varnholt.");
    Outcome const verbose = Locales({"--log-file", "host.log", "--verbose"});
    for (QString const& line : written)
        QVERIFY2(verbose.Err.contains(line.section(' ', 1).section(' ', 0, 0)), qPrintable(line));
    QVERIFY(Lines().filter("[varnholt.").size() > written.size());
}

void HostLogFileTest::AFileThatCannotBeWrittenIsToldAndTheRunGoesOn()
{
    Outcome const outcome = Locales({"--log-file", "no such folder/host.log"});
    QVERIFY2(outcome.Err.contains("The log file " + Game->Base +
                                  "no such folder/host.log cannot be written ("),
             qPrintable(outcome.Err));
    QVERIFY(outcome.Out.contains("frFR"));
    QCOMPARE(outcome.Status, 0);
    QCOMPARE(Locales({"-q", "--log-file", "no such folder/host.log"}).Err, QString());
}

void HostLogFileTest::StandardOutputStaysJsonWithoutTheFile()
{
    Outcome const outcome = Locales({"--json", "--log-file", "no such folder/host.log"});
    QCOMPARE(JsonReport(outcome.Out).Foreign, QStringList());
    QCOMPARE(JsonReport(outcome.Out).Last()["type"].toString(), QString("result"));
    QVERIFY(outcome.Err.contains("The log file "));
}

} // namespace Varnholt::TestSupport

QTEST_GUILESS_MAIN(Varnholt::TestSupport::HostLogFileTest)
#include "tst_HostLogFile.moc"
