#include "Host/Window/Desktop/Desktop.hpp"

#include "Host/Window/Dialogs/Dialogs.hpp"
#include "Host/Window/Dialogs/SettingsDialog.hpp"
#include "Host/Window/Main/MainWindow.hpp"
#include "Host/Window/Main/RunText.hpp"

#include <QEvent>

#include <utility>

namespace Varnholt::Host {

namespace {

using Type = RunRequest::Type;

/// Whether one may look elsewhere meanwhile.
bool TakesLong(Type p_Kind)
{
    return p_Kind == Type::Install || p_Kind == Type::Update || p_Kind == Type::Repair ||
           p_Kind == Type::Verify;
}

} // namespace

Desktop::Desktop(MainWindow& p_Window, Language& p_Language, WindowSettings p_Settings,
                 QString p_DefaultServer)
    : Window(p_Window)
    , Texts(p_Language)
    , Settings(std::move(p_Settings))
    , DefaultServer(std::move(p_DefaultServer))
    , File(p_Window.Controller().Options().SettingsFile)
{
    Connect();
    Window.installEventFilter(this);
}

void Desktop::Connect()
{
    GameController& game = Window.Controller();
    connect(&game, &GameController::Opened, this,
            [this, &game] { game.SetLanguage(Texts.Code()); });
    connect(&game, &GameController::Changed, this,
            [this, &game] { Tray.Show(game.State(), Window.windowTitle()); });
    connect(&game, &GameController::RunEnded, this, &Desktop::Notify);
    connect(&Window.Windows(), &Dialogs::SettingsRequested, &File, &AsyncSettings::Read);
    connect(&File, &AsyncSettings::WasRead, this, [this](SettingsFile::Values const& p_Values) {
        OpenSettings(WindowSettings::Of(p_Values));
    });
    connect(&File, &AsyncSettings::Written, this, [this](std::optional<Failure> const& p_Failure) {
        if (p_Failure)
            Q_EMIT Window.Controller().Told(
                {RunText::Sentence(*p_Failure), Notice::Level::Warning});
    });
    connect(&Messages, &Notifier::Chosen, this, &Desktop::ShowWindow);
    connect(&Tray, &TrayIcon::ShowRequested, this, &Desktop::ShowWindow);
    connect(&Tray, &TrayIcon::PauseRequested, &game, &GameController::Pause);
    connect(&Tray, &TrayIcon::ContinueRequested, &game, &GameController::Continue);
    connect(&Tray, &TrayIcon::QuitRequested, &Window, &MainWindow::Quit);
}

void Desktop::Begin()
{
    Use(Settings);
    Window.restoreGeometry(Settings.Geometry);
    if (!Settings.StartsMinimised)
        Window.show();
    else if (!StaysInTray())
        Window.showMinimized();
    Window.Begin();
}

void Desktop::ShowWindow()
{
    Window.show();
    Window.setWindowState(Window.windowState() & ~Qt::WindowMinimized);
    Window.raise();
    Window.activateWindow();
}

void Desktop::Use(WindowSettings const& p_Settings)
{
    Settings = p_Settings;
    Texts.Use(Settings.Language);
    Window.SetEndsWhenClosed(!StaysInTray());
    Tray.SetVisible(StaysInTray());
    Window.Windows().SetServer(Settings.ContentUrl.isEmpty() ? DefaultServer : Settings.ContentUrl);
}

/// \param p_Settings as the file has them: another program may have written them meanwhile
void Desktop::OpenSettings(WindowSettings const& p_Settings)
{
    auto* const dialog =
        new SettingsDialog(p_Settings, DefaultServer, TrayIcon::IsAvailable(), &Window);
    connect(dialog, &QDialog::accepted, this, [this, dialog, p_Settings] {
        WindowSettings const chosen = dialog->Chosen();
        File.Write(chosen.ChangesFrom(p_Settings));
        Save(chosen);
    });
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void Desktop::Save(WindowSettings const& p_Settings)
{
    WindowSettings const before = Settings;
    GameController& game = Window.Controller();
    HostOptions options = game.Options();
    p_Settings.ApplyTo(options, before);
    game.SetOptions(options);
    Use(p_Settings);
    game.SetLanguage(Texts.Code());
    if (p_Settings.NeedsNewSession(before) && !game.IsBusy())
        game.Reopen();
}

/// The place is written when the window goes, by whatever way.
void Desktop::KeepPlace()
{
    WindowSettings now = Settings;
    now.Geometry = Window.saveGeometry();
    SettingsFile::Values const changes = now.ChangesFrom(Settings);
    Settings = now;
    if (!changes.isEmpty())
        File.Write(changes);
}

bool Desktop::eventFilter(QObject* p_Object, QEvent* p_Event)
{
    if (p_Object == &Window && p_Event->type() == QEvent::Hide)
        KeepPlace();
    if (p_Object == &Window && p_Event->type() == QEvent::LanguageChange)
        Tray.Translate();
    return QObject::eventFilter(p_Object, p_Event);
}

void Desktop::Notify(RunRequest const& p_Request, RunResult const& p_Result)
{
    bool const isStopped = p_Result.Problem && p_Result.Problem->Kind == FailureKind::Interrupted;
    if (!Settings.Notifies || !TakesLong(p_Request.Kind) || isStopped || Window.isActiveWindow())
        return;
    Messages.Show(Window.Controller().Info().Name, p_Result.Problem
                                                       ? RunText::Sentence(*p_Result.Problem)
                                                       : RunText::Done(p_Request, p_Result));
}

} // namespace Varnholt::Host
