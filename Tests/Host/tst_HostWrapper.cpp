#include "Tests/Host/PlayedGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

/// Games that another program starts.
class HostWrapperTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AWrapperStartsTheGame();
    void AWrapperIsKept();
    void AWrapperRunsWhatTheSystemDoesNot();
    void AWrapperThatCannotBeStartedIsTold_data();
    void AWrapperThatCannotBeStartedIsTold();
};

void HostWrapperTest::AWrapperStartsTheGame()
{
    PlayedGame const game;
    QString const wrapper = game.Base + "my wrapper";
    QVERIFY(WriteFile(wrapper, "#!/bin/sh\nprintf '%s\\n' \"$@\" >\"$0.args\"\nshift 2\n"
                               "exec \"$@\"\n"));
    QVERIFY(SetMode(wrapper, 0700));
    Outcome const outcome =
        game.Play({"--wrapper", QStringLiteral(R"('%1' -x "a \"b\" $HOME")").arg(wrapper)});
    QCOMPARE(outcome.Err, QString());
    QVERIFY(game.WaitForStarts(1));
    QCOMPARE(QString::fromUtf8(ReadFile(wrapper + ".args")),
             "-x\na \"b\" $HOME\n" + game.Path(game.Program) + "\n-noautolaunch64bit\n");
    QCOMPARE(game.Arguments(), QString("-noautolaunch64bit\n"));
}

void HostWrapperTest::AWrapperIsKept()
{
    PlayedGame const game;
    QCOMPARE(HostProcess(game, {"config", "wrapper", "env WRAPPED=yes"}).Finish().Status, 0);
    QCOMPARE(game.Play().Err, QString());
    QVERIFY(game.WaitForStarts(1));
    QVERIFY2(game.Environment().contains("WRAPPED=yes\n"), qPrintable(game.Environment()));
}

void HostWrapperTest::AWrapperRunsWhatTheSystemDoesNot()
{
    PlayedGame const game("echo \"$1\" >\"$0.args\"\n", PlayedGame::c_ExecutableFlags & ~0x02);
    QCOMPARE(game.Play({"--wrapper", "sh"}).Err, QString());
    QTRY_COMPARE_WITH_TIMEOUT(game.Arguments(), QString("-noautolaunch64bit\n"),
                              TestHost::c_Timeout);
}

void HostWrapperTest::AWrapperThatCannotBeStartedIsTold_data()
{
    QTest::addColumn<QString>("wrapper");
    QTest::addColumn<QString>("cause");
    QTest::newRow("no such name") << "no-such-program"
                                  << "there is no such program";
    QTest::newRow("no such file") << "/nowhere/wine"
                                  << "there is no such program";
    QTest::newRow("no program") << "/etc/passwd"
                                << "there is no such program";
}

void HostWrapperTest::AWrapperThatCannotBeStartedIsTold()
{
    QFETCH(QString, wrapper);
    QFETCH(QString, cause);
    PlayedGame const game;
    Outcome const outcome = game.Play(
        QStringList{"--wrapper", wrapper + " -x"} + QStringList{"--account", "me"}, "S3cret\n");
    QVERIFY2(IsOneSentence(outcome.Err), qPrintable(outcome.Err));
    QVERIFY2(outcome.Err.contains("the wrapper " + wrapper + " cannot be started (" + cause + ")"),
             qPrintable(outcome.Err));
    QCOMPARE(outcome.Status, 7);
    QVERIFY(!game.Has(game.Layout));
    QCOMPARE(game.Starts(), 0);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostWrapperTest)
#include "tst_HostWrapper.moc"
