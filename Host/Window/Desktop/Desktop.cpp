#include "Host/Window/Desktop/Desktop.hpp"

#include "Host/Cli/ConfigCommand.hpp"
#include "Host/Window/Dialogs/Dialogs.hpp"
#include "Host/Window/Dialogs/SettingsDialog.hpp"
#include "Host/Window/Main/MainWindow.hpp"
#include "Host/Window/Main/RunText.hpp"

#include <QEvent>
#include <QScreen>

#include <algorithm>
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

/// What a session learns only when it begins.
SettingsFile::Values OfSession(SettingsFile::Values const& p_Kept)
{
    SettingsFile::Values kept;
    for (auto row = p_Kept.constBegin(); row != p_Kept.constEnd(); ++row)
        if (row.key().startsWith(QLatin1String("options/")) &&
            row.key() != QLatin1String("options/limit-rate"))
            kept.insert(row.key(), row.value());
    return kept;
}

/// The screen may be another one than when its place was kept.
void FitToScreen(QWidget& p_Window, bool p_HasPlace)
{
    if (p_Window.isMaximized() || p_Window.isFullScreen())
        return;
    QRect const screen = p_Window.screen()->availableGeometry();
    p_Window.resize(p_Window.size().boundedTo(screen.size()));
    QRect place = p_Window.geometry();
    place.moveBottomRight(
        {std::min(place.right(), screen.right()), std::min(place.bottom(), screen.bottom())});
    place.moveTopLeft({std::max(place.left(), screen.left()), std::max(place.top(), screen.top())});
    if (p_HasPlace && place != p_Window.geometry()) // otherwise the desktop finds one
        p_Window.setGeometry(place);
}

} // namespace

Desktop::Desktop(MainWindow& p_Window, Language& p_Language, Choice p_Given,
                 QString p_DefaultServer, HasTray p_HasTray)
    : Window(p_Window)
    , Texts(p_Language)
    , Given(std::move(p_Given))
    , DefaultServer(std::move(p_DefaultServer))
    , IsTrayThere(p_HasTray)
    , File(Given.Options.SettingsFile)
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
    connect(&Window.Windows(), &Dialogs::SettingsRequested, this, [this] {
        AsksForSettings = true;
        File.Read();
    });
    connect(&File, &SettingsWatch::WasRead, this, &Desktop::OnRead);
    connect(&File, &SettingsWatch::WriteFailed, this,
            [this](Failure const& p_Failure) { Window.Tell(RunText::Sentence(p_Failure)); });
    connect(&Messages, &Notifier::Chosen, this, &Desktop::ShowWindow);
    connect(&Tray, &TrayIcon::ShowRequested, this, &Desktop::ShowWindow);
    connect(&Tray, &TrayIcon::PauseRequested, &game, &GameController::Pause);
    connect(&Tray, &TrayIcon::ContinueRequested, &game, &GameController::Continue);
    connect(&Tray, &TrayIcon::QuitRequested, &Window, &MainWindow::Quit);
}

void Desktop::Begin(SettingsFile::Values const& p_Kept)
{
    TakeUp(p_Kept);
    File.Begin();
    bool const hasPlace = Window.restoreGeometry(Settings.Geometry);
    FitToScreen(Window, hasPlace);
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

void Desktop::OnRead(SettingsFile::Values const& p_Kept, std::optional<Failure> const& p_Failure)
{
    if (p_Failure)
        TellFaults({*p_Failure});
    else
        TakeUp(p_Kept);
    if (std::exchange(AsksForSettings, false))
        OpenSettings();
}

void Desktop::TakeUp(SettingsFile::Values const& p_Kept)
{
    Choice choice = Given;
    std::vector<Failure> faults = ConfigCommand::Complete(choice, p_Kept);
    for (Failure const& unknown : ConfigCommand::UnknownKeys(p_Kept))
        faults.push_back(unknown);
    bool const needsSession = OfSession(p_Kept) != OfSession(std::exchange(Kept, p_Kept));
    Window.Controller().SetOptions(choice.Options, needsSession);
    Window.Windows().SetServer(
        choice.Options.ContentUrl.isEmpty() ? DefaultServer : choice.Options.ContentServer());
    Use(WindowSettings::Of(p_Kept));
    TellFaults(faults);
}

void Desktop::TellFaults(std::vector<Failure> const& p_Faults)
{
    QStringList sentences;
    for (Failure const& fault : p_Faults) // that of the file as a whole names it
        sentences += fault.Subject == Given.Options.SettingsFile
                         ? RunText::Sentence(fault)
                         : tr("In the settings file %1: %2.")
                               .arg(Given.Options.SettingsFile, fault.Sentence());
    if (std::exchange(ToldFaults, sentences) != sentences && !sentences.isEmpty())
        Window.Tell(sentences.join(QLatin1Char('\n')));
}

void Desktop::Use(WindowSettings const& p_Settings)
{
    Settings = p_Settings;
    QString const language = Texts.Code();
    Texts.Use(Settings.Language);
    if (Texts.Code() != language)
        Window.Controller().SetLanguage(Texts.Code());
    Window.SetEndsWhenClosed(!StaysInTray());
    Tray.SetVisible(StaysInTray());
}

void Desktop::OpenSettings()
{
    auto* const dialog = new SettingsDialog(Settings, DefaultServer, IsTrayThere(), &Window);
    connect(dialog, &QDialog::accepted, this,
            [this, dialog, before = Settings] { Change(dialog->Chosen().ChangesFrom(before)); });
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

/// They hold at once, whatever becomes of the file.
void Desktop::Change(SettingsFile::Values const& p_Changes)
{
    if (p_Changes.isEmpty())
        return;
    SettingsFile::Values kept = Kept;
    SettingsFile::Apply(kept, p_Changes);
    TakeUp(kept);
    File.Write(p_Changes);
}

/// The place is written when the window goes, by whatever way.
void Desktop::KeepPlace()
{
    WindowSettings now = Settings;
    now.Geometry = Window.saveGeometry();
    Change(now.ChangesFrom(Settings));
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
