#include "Host/Window/Main/MainWindow.hpp"

#include "Host/Window/Desktop/WindowTitle.hpp"
#include "Host/Window/Dialogs/Dialogs.hpp"
#include "Host/Window/Main/CommandRunner.hpp"
#include "Host/Window/Pages/EmptyPage.hpp"
#include "Host/Window/Pages/GameColumn.hpp"
#include "Host/Window/Pages/GamePage.hpp"
#include "Host/Window/Pages/PageMenu.hpp"
#include "Host/Window/Style/WindowPalette.hpp"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QHBoxLayout>
#include <QScreen>
#include <QTimer>
#include <QUrl>

#include <utility>

namespace Varnholt::Host {

MainWindow::MainWindow(HostOptions const& p_Options, QString const& p_ModuleFolder,
                       QString const& p_LogFile)
    : Games(p_Options)
    , Folder(p_ModuleFolder)
    , Column(new GameColumn)
    , Pages(new QStackedWidget)
    , Empty(new EmptyPage)
    , Opened(new Dialogs(Games, *this))
    , Commands(new CommandRunner(Games, *Opened, p_LogFile, this))
{
    Pages->addWidget(Empty);
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(Column);
    layout->addWidget(Pages, 1);
    QApplication::setPalette(WindowPalette(PagePalette::Of({}, {}, {})));
    resize(QSize(1024, 640).boundedTo(screen()->availableSize()));

    connect(Column, &GameColumn::Chosen, this, &MainWindow::Choose);
    ListenToGames();
    ListenToModules();
    ListenToCommands();
    Translate();
}

MainWindow::~MainWindow() = default;

void MainWindow::ListenToGames()
{
    connect(&Games, &GameController::Changed, this, &MainWindow::Refresh);
    connect(&Games, &GameController::Told, this, [this](HistoryEntry const& p_Entry) {
        if (Shown != nullptr)
            Shown->Add(p_Entry);
    });
    connect(&Games, &GameController::RunEnded, this,
            [this](RunRequest const&, RunResult const& p_Result) {
                if (Shown != nullptr && !p_Result.Locales.empty())
                    Shown->Menu().ShowLanguages(p_Result.Locales, p_Result.Locale);
            });
    connect(&Games, &GameController::Closed, this, &MainWindow::Finished);
}

void MainWindow::ListenToModules()
{
    connect(&Folder, &ModuleFolder::Appeared, &Survey, &ModuleSurvey::Look);
    connect(&Survey, &ModuleSurvey::Found, this, &MainWindow::Add);
    connect(&Survey, &ModuleSurvey::Refused, this, [this](QString const& p_File, QString p_Why) {
        Refused = std::move(p_Why);
        Folder.LookAgainAt(p_File);
    });
    connect(&Survey, &ModuleSurvey::Finished, this, [this] {
        HasLooked = true;
        // Not before: a module that is in a session must not be looked at.
        if (Shown == nullptr && !Known.empty())
            Choose(Known.begin()->first);
        Translate();
    });
}

void MainWindow::ListenToCommands()
{
    connect(Commands, &CommandRunner::HistoryRequested, this, [this] { Shown->ToggleHistory(); });
    connect(Commands, &CommandRunner::DiagnosisRequested, this,
            [this] { QApplication::clipboard()->setText(Shown->Diagnosis(Games.Info())); });
    connect(Commands, &CommandRunner::ShowRequested, this, [](QString const& p_Path) {
        if (!p_Path.isEmpty())
            QDesktopServices::openUrl(QUrl::fromLocalFile(p_Path));
    });
}

void MainWindow::Begin()
{
    Folder.Watch();
}

void MainWindow::Add(ModuleCard const& p_Card)
{
    if (Known.count(p_Card.File) != 0)
        return;
    auto* const page = new GamePage(p_Card);
    Known[p_Card.File] = page;
    Pages->addWidget(page);
    Column->Add(p_Card);
    connect(page, &GamePage::Requested, Commands, &CommandRunner::Run);
    connect(page, &GamePage::ProblemRead, &Games, &GameController::ForgetProblem);
    connect(page, &GamePage::LanguageChosen, this, [this](QString const& p_Tag) {
        RunRequest request;
        request.Kind = RunRequest::Type::ChooseLocale;
        request.Argument = p_Tag;
        Games.Start(request);
    });
}

void MainWindow::Choose(QString const& p_ModuleFile)
{
    if (auto const why = Games.Choose(p_ModuleFile)) {
        if (Shown != nullptr)
            Shown->Tell(*why);
        return;
    }
    bool const isFirst = Shown == nullptr;
    Shown = Known[p_ModuleFile];
    Pages->setCurrentWidget(Shown);
    QApplication::setPalette(WindowPalette(Shown->Card().Palette));
    Column->Select(p_ModuleFile);
    Refresh();
    if (isFirst)
        Shown->FocusPrimary();
    for (QString const& text : std::exchange(Untold, {}))
        Tell(text);
}

void MainWindow::Tell(QString const& p_Text)
{
    if (Shown == nullptr) {
        Untold += p_Text;
        return;
    }
    Shown->Add({p_Text, Notice::Level::Warning});
    Shown->Tell(p_Text);
}

void MainWindow::Refresh()
{
    if (Shown != nullptr)
        Shown->Show(Games.State());
    Translate();
}

void MainWindow::Translate()
{
    setWindowTitle(Shown == nullptr ? tr("Games") : WindowTitle(Shown->Card().Name, Games.State()));
    if (!HasLooked)
        Empty->setText(tr("Looking for games…"));
    else
        Empty->setText(Refused.isEmpty() ? tr("There is no game yet.") : Refused);
}

void MainWindow::Quit()
{
    constexpr int c_MostMilliseconds = 10'000; // for the module to put everything in order

    if (std::exchange(IsEnding, true))
        return;
    hide();
    Games.Close();
    QTimer::singleShot(c_MostMilliseconds, this, &MainWindow::Finished);
}

void MainWindow::closeEvent(QCloseEvent* p_Event)
{
    p_Event->accept(); // gone at once, whatever the module is busy with
    if (EndsWhenClosed)
        Quit();
}

void MainWindow::changeEvent(QEvent* p_Event)
{
    if (p_Event->type() == QEvent::LanguageChange)
        Translate();
    QWidget::changeEvent(p_Event);
}

} // namespace Varnholt::Host
