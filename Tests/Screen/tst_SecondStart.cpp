#include "Tests/Screen/ScreenGame.hpp"
#include "Tests/Support/TestMain.hpp"

namespace Varnholt::TestSupport {

/// The program, started once more while it runs.
class SecondStartTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ItBringsTheFirstOneToTheFrontAndEnds();
    void WhatWasKilledHindersNobody();

private:
    /// How a further start of the program ends; -1 when it does not.
    static int StartAgain(ScreenGame const& p_Game)
    {
        QProcess second;
        p_Game.Start(second, p_Game.SettingsFile);
        return second.waitForFinished() && second.exitStatus() == QProcess::NormalExit
                   ? second.exitCode()
                   : -1;
    }
};

void SecondStartTest::ItBringsTheFirstOneToTheFrontAndEnds()
{
    ScreenGame game({1024, 640});
    QVERIFY2(game.On().Problem().isEmpty(), qPrintable(game.On().Problem()));
    QVERIFY(game.Open());
    QImage const first = game.On().StillPicture();

    // One with other settings is one of its own, and covers it.
    QString const settings = game.Base + "settings/other.ini";
    QVERIFY(QFile::copy(game.SettingsFile, settings));
    QSettings(settings, QSettings::IniFormat).setValue("window/language", "frFR");
    QProcess other;
    game.Start(other, settings);
    QVERIFY(game.WaitUntil([&] { return game.On().Windows() == 2; }));
    QVERIFY(game.WaitUntil([&] { return game.On().StillPicture() != first; }));

    QCOMPARE(StartAgain(game), 0);
    QVERIFY(game.WaitUntil([&] { return game.On().StillPicture() == first; }));
    QCOMPARE(game.On().Windows(), 2);
    other.terminate();
    QVERIFY(other.waitForFinished());
    QCOMPARE(other.exitCode(), 0);
    QCOMPARE(game.Close(), 0);
}

void SecondStartTest::WhatWasKilledHindersNobody()
{
    ScreenGame game({1024, 640});
    QVERIFY2(game.On().Problem().isEmpty(), qPrintable(game.On().Problem()));
    QVERIFY(game.Open());
    game.Kill();
    QVERIFY(game.WaitUntil([&] { return game.On().Windows() == 0; }));
    QVERIFY(game.Open());
    QCOMPARE(StartAgain(game), 0);
    QCOMPARE(game.Close(), 0);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::SecondStartTest)
#include "tst_SecondStart.moc"
