#include "Host/Window/Pages/PageMenu.hpp"
#include "Host/Window/Pages/PrimaryAction.hpp"
#include "Tests/Support/TestMain.hpp"
#include "Tests/Window/PageStates.hpp"

Q_DECLARE_METATYPE(Varnholt::Host::GameState)

namespace Varnholt::TestSupport {

using Host::FailureKind;
using Host::GameState;
using Host::PageCommand;
using Host::RunPhase;
using Type = Host::RunRequest::Type;

class PrimaryActionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void FollowsFromTheState_data();
    void FollowsFromTheState();
    void TheMenuOffersWhatTheStateAllows_data();
    void TheMenuOffersWhatTheStateAllows();
};

namespace {

template <typename Change>
GameState Complete(Change p_Change)
{
    GameState state = PageStates::Complete();
    p_Change(state);
    return state;
}

GameState AfterFailed(Type p_Kind, FailureKind p_Failure)
{
    GameState state = PageStates::Failed(PageStates::FailureOf(p_Failure));
    state.Failed.Kind = p_Kind;
    return state;
}

constexpr int c_None = -1;

void AddState(char const* p_Name, GameState const& p_State, char const* p_Text, int p_Command)
{
    AddRow(p_Name, p_State, QString(p_Text), p_Command);
}

void AddState(char const* p_Name, GameState const& p_State, char const* p_Text,
              PageCommand p_Command)
{
    AddState(p_Name, p_State, p_Text, static_cast<int>(p_Command));
}

void AddWork(char const* p_Name, Type p_Kind, char const* p_Text)
{
    AddState(p_Name, PageStates::Working(p_Kind, RunPhase::Connecting), p_Text, c_None);
}

} // namespace

void PrimaryActionTest::FollowsFromTheState_data()
{
    QTest::addColumn<GameState>("State");
    QTest::addColumn<QString>("Text");
    QTest::addColumn<int>("Command");

    GameState closed;
    AddState("opening", closed, "One moment", c_None);
    closed.Session = GameState::Stage::Failed;
    AddState("no module", closed, "Try again", PageCommand::TryAgain);
    AddState("not installed", PageStates::NotInstalled(), "Install", PageCommand::Install);
    AddState("complete", PageStates::Complete(), "Play", PageCommand::Play);
    AddState("unfinished", Complete([](auto& p_State) { p_State.Status->IsUnfinished = true; }),
             "Continue", PageCommand::Continue);
    AddState("never looked at", Complete([](auto& p_State) { p_State.Status->Build.clear(); }),
             "Update", PageCommand::Update);
    AddState("newer build", Complete([](auto& p_State) { p_State.IsUpdateKnown = true; }), "Update",
             PageCommand::Update);
    AddState("running", Complete([](auto& p_State) { p_State.IsGameRunning = true; }), "Playing",
             c_None);
    AddState("folder gone", Complete([](auto& p_State) { p_State.Status->FolderExists = false; }),
             "Try again", PageCommand::TryAgain);
    AddState("another program",
             Complete([](auto& p_State) { p_State.Status->Download = Host::RunningHost(); }),
             "In use", c_None);

    AddWork("installing", Type::Install, "Installing");
    AddWork("updating", Type::Update, "Updating");
    AddWork("repairing", Type::Repair, "Repairing");
    AddWork("checking", Type::Verify, "Checking");
    AddWork("starting", Type::Play, "Starting");
    AddWork("uninstalling", Type::Uninstall, "Uninstalling");
    GameState paused = PageStates::Working(Type::Install, RunPhase::Suspended);
    paused.IsPaused = true;
    AddState("paused", paused, "Continue", PageCommand::Resume);
    GameState waiting = PageStates::Working(Type::Update, RunPhase::WaitingForGame);
    waiting.IsGameRunning = true;
    AddState("update waits for the game", waiting, "Updating", c_None);

    AddState("install failed", Complete([](auto& p_State) {
                 p_State.Status->IsInstalled = false;
                 p_State.Problem = PageStates::FailureOf(FailureKind::DiskFull);
                 p_State.Failed.Kind = Type::Install;
             }),
             "Try again", PageCommand::TryAgain);
    AddState("update failed", AfterFailed(Type::Update, FailureKind::ServerSilent), "Try again",
             PageCommand::TryAgain);
    AddState("start failed", AfterFailed(Type::Play, FailureKind::ExecutableUnusable), "Try again",
             PageCommand::TryAgain);
    AddState("game failed", AfterFailed(Type::Play, FailureKind::GameFailed), "Play",
             PageCommand::Play);
    AddState("files wrong", AfterFailed(Type::Verify, FailureKind::FilesWrong), "Play",
             PageCommand::Play);
    AddState("languages not told", AfterFailed(Type::ListLocales, FailureKind::ServerSilent),
             "Play", PageCommand::Play);
}

void PrimaryActionTest::FollowsFromTheState()
{
    QFETCH(GameState, State);
    Host::PrimaryAction const action = Host::PrimaryAction::Of(State);
    QTEST(QString(action.Text).remove('&'), "Text");
    QTEST(action.Command ? static_cast<int>(*action.Command) : c_None, "Command");
    QCOMPARE(action.Text.contains('&'), action.Command.has_value());
}

void PrimaryActionTest::TheMenuOffersWhatTheStateAllows_data()
{
    QTest::addColumn<GameState>("State");
    QTest::addColumn<QString>(
        "Allowed"); // of stop, stop repair, check, language, folder, uninstall

    AddRow("opening", GameState(), QString("------"));
    AddRow("not installed", PageStates::NotInstalled(), QString("------"));
    AddRow("complete", PageStates::Complete(), QString("--clfu"));
    AddRow("folder gone", Complete([](auto& p_State) { p_State.Status->FolderExists = false; }),
           QString("---l-u"));
    AddRow("running", Complete([](auto& p_State) { p_State.IsGameRunning = true; }),
           QString("--clf-"));
    AddRow("another program",
           Complete([](auto& p_State) { p_State.Status->Download = Host::RunningHost(); }),
           QString("----f-"));
    AddRow("updating", PageStates::Working(Type::Update, RunPhase::Comparing), QString("s---f-"));
    AddRow("repairing", PageStates::Working(Type::Repair, RunPhase::Comparing), QString("sr--f-"));
}

void PrimaryActionTest::TheMenuOffersWhatTheStateAllows()
{
    QFETCH(GameState, State);
    std::pair<PageCommand, char> const commands[] = {
        {PageCommand::Stop, 's'},       {PageCommand::StopRepair, 'r'},
        {PageCommand::Check, 'c'},      {PageCommand::ChooseLanguage, 'l'},
        {PageCommand::OpenFolder, 'f'}, {PageCommand::Uninstall, 'u'}};
    Host::PageMenu menu;
    menu.Show(State);
    QString allowed;
    for (auto const& command : commands)
        allowed += menu.ActionOf(command.first)->isEnabled() ? command.second : '-';
    QTEST(allowed, "Allowed");
    QCOMPARE(menu.ActionOf(PageCommand::Repair)->isEnabled(), allowed.contains('c'));
    QCOMPARE(menu.ActionOf(PageCommand::Stop)->isVisible(), allowed.contains('s'));
    QVERIFY(menu.ActionOf(PageCommand::Settings)->isEnabled());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::PrimaryActionTest)
#include "tst_PrimaryAction.moc"
