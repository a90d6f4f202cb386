#include "Tests/Support/TestMain.hpp"

#include <QProcess>

namespace Varnholt::TestSupport {

/// The program of tests itself: what is asked of it runs, and nothing else counts as passed.
class TestMainTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ListsItsClasses();
    void RefusesWhatIsNoClassOfIts_data();
    void RefusesWhatIsNoClassOfIts();
    void HandsItsOtherArgumentsOn();
    void AFailureIsItsStatus();

private:
    /// Standard output and error of this program, run again; none when it did not end by itself.
    QString Run(QStringList const& p_Arguments)
    {
        QProcess program;
        program.setProcessChannelMode(QProcess::MergedChannels);
        program.start(QCoreApplication::applicationFilePath(), p_Arguments);
        if (!program.waitForFinished() || program.exitStatus() != QProcess::NormalExit)
            return {};
        Status = program.exitCode();
        return QString::fromUtf8(program.readAll());
    }

    int Status = -1;
};

void TestMainTest::ListsItsClasses()
{
    QStringList const classes = Run({"--list"}).split('\n');
    QCOMPARE(Status, 0);
    QVERIFY(classes.contains("TestMainTest"));
    QVERIFY(classes.contains("TestHostTest"));
}

void TestMainTest::RefusesWhatIsNoClassOfIts_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("none") << QStringList();
    QTest::newRow("unknown") << QStringList("NoTest");
    QTest::newRow("part of a name") << QStringList("TestMain");
    QTest::newRow("argument of Qt Test") << QStringList("-functions");
}

void TestMainTest::RefusesWhatIsNoClassOfIts()
{
    QFETCH(QStringList, arguments);
    QString const said = Run(arguments);
    QCOMPARE(Status, 2);
    QVERIFY2(said.contains("no class of tests \"" + arguments.value(0) + "\""), qPrintable(said));
    QVERIFY2(said.contains("\nTestMainTest\n"), qPrintable(said));
}

void TestMainTest::HandsItsOtherArgumentsOn()
{
    QString const functions = Run({"TestMainTest", "-functions"});
    QCOMPARE(Status, 0);
    QVERIFY2(functions.contains("HandsItsOtherArgumentsOn()"), qPrintable(functions));
    QVERIFY2(!functions.contains("Totals"), qPrintable(functions));
}

void TestMainTest::AFailureIsItsStatus()
{
    Run({"TestMainTest", "NoFunctionOfThisName"});
    QCOMPARE(Status, 1);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::TestMainTest)
#include "tst_TestMain.moc"
