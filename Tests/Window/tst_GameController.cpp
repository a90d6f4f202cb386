#include "Tests/Support/LoadedPlugin.hpp"
#include "Tests/Support/TestMain.hpp"
#include "Tests/Window/WindowGame.hpp"

#include <QSignalSpy>

namespace Varnholt::TestSupport {

using Host::GameController;
using Host::GameState;
using Host::RunRequest;
using Type = RunRequest::Type;

class GameControllerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ACompleteGameIsCheckedQuietly();
    void TheUserComesBeforeAQuietCheck();
    void AnotherGameIsRefusedDuringAJobAndOpensAfterIt();
    void AModuleThatCannotBeUsedIsToldAndTriedAgain();
    void NoPasswordIsKept();
};

void GameControllerTest::ACompleteGameIsCheckedQuietly()
{
    WindowGame game;
    game.AddFiles().Publish();
    game.PutInstalled();
    game.Content.Build = "build_2";
    game.Publish();
    game.Open();
    QSignalSpy const ended(&game.Controller(), &GameController::RunEnded);
    QVERIFY(game.WaitUntil([&] { return game.State().IsUpdateKnown; }));
    QVERIFY(!game.State().Problem);
    QVERIFY(ended.isEmpty());
    game.Controller().Start(Type::Update);
    QVERIFY(game.WaitUntil([&] { return !ended.isEmpty(); }));
    QVERIFY(!game.State().IsUpdateKnown && !game.State().Problem);
    QVERIFY(game.WaitUntil([&] { return game.State().Status->Build == "build_2"; }));
}

void GameControllerTest::TheUserComesBeforeAQuietCheck()
{
    WindowGame game;
    game.AddFiles().Publish();
    game.PutInstalled();
    game.Server.Script(game.Content.VersionPath()).Then(Answer::SilentBeforeHeaders());
    game.Open();
    QVERIFY(game.WaitUntil([&] { return game.Server.Count(game.Content.VersionPath()) == 1; }));
    QSignalSpy const ended(&game.Controller(), &GameController::RunEnded);
    game.Controller().Start(Type::Verify);
    QVERIFY(game.WaitUntil([&] { return !ended.isEmpty(); }));
    QCOMPARE(ended.size(), 1);
    QCOMPARE(ended[0][0].value<RunRequest>().Kind, Type::Verify);
    QVERIFY(!ended[0][1].value<Host::RunResult>().Problem);
}

void GameControllerTest::AnotherGameIsRefusedDuringAJobAndOpensAfterIt()
{
    WindowGame game;
    game.AddFiles().Publish();
    QString const gate = game.HoldContent("Data/base.MPQ", 1'000);
    game.Open();
    game.Install();
    QString const other = QStringLiteral(VARNHOLT_INVENTED_MODULE);
    auto const refusal = game.Controller().Choose(other);
    QVERIFY(refusal && refusal->startsWith("Mists of Pandaria is being worked on."));
    QCOMPARE(game.Controller().Info().Name, QString("Mists of Pandaria"));
    game.Server.OpenGate(gate);
    QVERIFY(game.WaitUntil([&] { return !game.Controller().IsBusy(); }));
    QVERIFY(!game.Controller().Choose(other));
    QVERIFY(!game.State().Status);
    QVERIFY(game.WaitUntil([&] { return game.State().Status.has_value(); }));
    QCOMPARE(game.Controller().Info().Name, QString("Lantern Coast"));
    QVERIFY(!game.State().Status->IsInstalled);
    QVERIFY(!game.Controller().Choose(LoadedPlugin::Path()));
    QVERIFY(
        game.WaitUntil([&] { return game.State().Status && game.State().Status->IsInstalled; }));
}

void GameControllerTest::AModuleThatCannotBeUsedIsToldAndTriedAgain()
{
    HostGame game;
    game.AddFiles().Publish();
    Host::HostOptions options;
    options.SettingsFile = game.SettingsFile;
    GameController controller(options);
    QString const file = game.Base + "libPelmora.so";
    QVERIFY(!controller.Choose(file));
    QTRY_COMPARE(controller.State().Session, GameState::Stage::Failed);
    QCOMPARE(controller.State().Problem->Kind, Host::FailureKind::ModuleMissing);
    QVERIFY(QFile::link(LoadedPlugin::Path(), file));
    controller.Reopen();
    QTRY_COMPARE(controller.State().Session, GameState::Stage::Open);
    QSignalSpy const closed(&controller, &GameController::Closed);
    controller.Close();
    QTRY_COMPARE(closed.size(), 1);
}

void GameControllerTest::NoPasswordIsKept()
{
    WindowGame game;
    game.AddFiles().Publish();
    game.Open();
    QSignalSpy const ended(&game.Controller(), &GameController::RunEnded);
    RunRequest request;
    request.Kind = Type::Play;
    request.Argument = "me";
    request.Password = "secret";
    game.Controller().Start(request);
    QCOMPARE(game.State().Job->Password, QString());
    QVERIFY(game.WaitUntil([&] { return !ended.isEmpty(); }));
    QCOMPARE(game.State().Problem->Kind, Host::FailureKind::NotInstalled);
    QCOMPARE(game.State().Failed.Argument, QString("me"));
    QCOMPARE(game.State().Failed.Password, QString());
    QCOMPARE(ended[0][0].value<RunRequest>().Password, QString());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::GameControllerTest)
#include "tst_GameController.moc"
