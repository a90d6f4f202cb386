#include "Host/Window/Dialogs/Dialogs.hpp"
#include "Host/Window/Dialogs/SettingsDialog.hpp"
#include "Host/Window/Pages/GamePage.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"
#include "Tests/Window/WindowGame.hpp"

#include <QComboBox>
#include <QSpinBox>

namespace Varnholt::TestSupport {

using Type = Host::RunRequest::Type;

/// The settings of a window that runs: changed by its user, by other programs, by hand.
class DesktopSettingsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void ALanguageHoldsAtOnceAndForTheModule();
    void WhatOtherProgramsChangeIsTakenUp();
    void WhatIsChangedDuringARunHoldsForTheNext();
    void NobodyLosesWhatHeWrites();
    void WhatCannotBeUsedIsToldAndStays();
    void AFileThatBreaksMeanwhileIsTold();

private:
    static Host::SettingsDialog* DialogOf(WindowGame& p_Game)
    {
        p_Game.Window().Windows().OpenSettings();
        Host::SettingsDialog* dialog = nullptr;
        bool const isThere = p_Game.WaitUntil([&] {
            return (dialog = p_Game.Window().findChild<Host::SettingsDialog*>()) != nullptr;
        });
        return isThere ? dialog : nullptr;
    }
    static void Config(WindowGame const& p_Game, QString const& p_Key, QString const& p_Value)
    {
        QCOMPARE(HostProcess(p_Game, {"config", p_Key, p_Value}).Finish().Status, 0);
    }
};

void DesktopSettingsTest::ALanguageHoldsAtOnceAndForTheModule()
{
    WindowGame game;
    game.AddFiles().Publish();
    game.SetSetting("window/language", "enUS");
    game.OpenOnDesktop(false);
    QCOMPARE(game.Primary(), QString("Install"));
    auto* const dialog = DialogOf(game);
    QVERIFY(dialog);
    dialog->findChildren<QComboBox*>()[0]->setCurrentText(QString::fromUtf8("Français"));
    dialog->accept();
    QVERIFY(game.WaitForPrimary("Installer"));
    QVERIFY(game.WaitUntil([&] { return game.Setting("window/language") == "frFR"; }));
    game.Install();
    QVERIFY(game.WaitForPrimary("Jouer"));
    QCOMPARE(game.Wrong("frFR"), QStringList());
}

void DesktopSettingsTest::WhatOtherProgramsChangeIsTakenUp()
{
    WindowGame game;
    game.AddFiles().Publish();
    game.OpenOnDesktop(false);
    Config(game, "connections", "7");
    Config(game, "limit-rate", "5M");
    QVERIFY(game.WaitUntil([&] { return game.Controller().Options().Connections == 7; }));
    QVERIFY(game.WaitUntil(
        [&] { return game.Controller().Options().BytesPerSecond == quint64(5) << 20; }));
    QVERIFY(game.WaitUntil([&] { return game.State().Status.has_value(); })); // of a new session
    QCOMPARE(HostProcess(game, {"install", game.Folder}).Finish().Status, 0);
    QVERIFY(game.WaitForPrimary("Play"));
}

void DesktopSettingsTest::WhatIsChangedDuringARunHoldsForTheNext()
{
    WindowGame game;
    game.AddFiles().Publish();
    QString const gate = game.HoldContent("Data/base.MPQ", 1'000);
    game.OpenOnDesktop(false);
    game.Install();
    QVERIFY(game.WaitUntil([&] { return QFileInfo(game.Path("Data/base.MPQ.part")).size() > 0; }));
    ScriptedServer other;
    game.Content.Publish(other);
    Config(game, "content-url", other.BaseUrl());
    QVERIFY(
        game.WaitUntil([&] { return game.Controller().Options().ContentUrl == other.BaseUrl(); }));
    game.Server.OpenGate(gate);
    QVERIFY(game.WaitForPrimary("Play"));
    QCOMPARE(other.Count(game.Content.VersionPath()), 0);
    bool hasEnded = false;
    connect(&game.Controller(), &Host::GameController::RunEnded, this,
            [&](auto const& p_Request) { hasEnded = p_Request.Kind == Type::Update; });
    game.Controller().Start(Type::Update);
    QVERIFY(game.WaitUntil([&] { return hasEnded; }));
    QVERIFY(!game.State().Problem);
    QVERIFY(other.Count(game.Content.VersionPath()) > 0);
}

void DesktopSettingsTest::NobodyLosesWhatHeWrites()
{
    WindowGame game;
    game.AddFiles().Publish();
    game.OpenOnDesktop(false);
    auto* const dialog = DialogOf(game); // and meanwhile
    QVERIFY(dialog);
    Config(game, "retry-for", "90s");
    dialog->findChild<QSpinBox*>()->setValue(9);
    dialog->accept();
    game.Install();
    QVERIFY(game.WaitForPrimary("Play"));
    game.Close();
    QCOMPARE(game.Setting("options/retry-for"), QVariant("90s"));
    QCOMPARE(game.Setting("options/connections"), QVariant("9"));
    QCOMPARE(game.Setting("host/pelmora_app/build"), QVariant("build_1"));
    QVERIFY(!game.Setting("window/geometry").isNull());
}

void DesktopSettingsTest::WhatCannotBeUsedIsToldAndStays()
{
    WindowGame game;
    game.AddFiles().Publish();
    game.SetSetting("options/limit-rate", "abc");
    game.SetSetting("options/rate-limit", "abc");
    game.SetSetting("options/connections", "7");
    game.OpenOnDesktop(false);
    QString const told = game.Text("stripTitle");
    for (QString const& part :
         {game.SettingsFile, QString("\"limit-rate\" is not usable: \"abc\" is no rate"),
          QString("there is no setting \"rate-limit\"")}) {
        QVERIFY2(told.contains(part), qPrintable(told));
        QVERIFY(game.Page().Diagnosis({}).contains(part)); // and its history
    }
    QCOMPARE(game.Controller().Options().Connections, 7);
    game.Close();
    QCOMPARE(game.Setting("options/limit-rate"), QVariant("abc"));
    QCOMPARE(game.Setting("options/rate-limit"), QVariant("abc"));
}

void DesktopSettingsTest::AFileThatBreaksMeanwhileIsTold()
{
    WindowGame game;
    game.AddFiles().Publish();
    game.SetSetting("options/connections", "7");
    game.OpenOnDesktop(false);
    QByteArray const whole = ReadFile(game.SettingsFile);
    QVERIFY(WriteFile(game.SettingsFile, "no settings\n"));
    QVERIFY(game.WaitUntil([&] { return game.Text("stripTitle").contains(game.SettingsFile); }));
    QCOMPARE(game.Controller().Options().Connections, 7);
    QVERIFY(WriteFile(game.SettingsFile, whole + "retry-for=90s\n"));
    QVERIFY(
        game.WaitUntil([&] { return game.Controller().Options().RetryForMilliseconds == 90'000; }));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::DesktopSettingsTest)
#include "tst_DesktopSettings.moc"
