#include "Host/Window/Pages/PageMenu.hpp"

#include <QActionGroup>

namespace Varnholt::Host {

using Type = RunRequest::Type;

PageMenu::PageMenu(QWidget* p_Parent)
    : QMenu(p_Parent)
    , Languages(new QMenu(this))
{
    for (PageCommand const command : {PageCommand::Stop, PageCommand::StopRepair})
        Add(command);
    addSeparator();
    for (PageCommand const command : {PageCommand::Check, PageCommand::Repair})
        Add(command);
    Actions[PageCommand::ChooseLanguage] = addMenu(Languages);
    Add(PageCommand::ChangeAccount);
    addSeparator();
    for (PageCommand const command : {PageCommand::OpenFolder, PageCommand::ShowHistory,
                                      PageCommand::ShowLog, PageCommand::CopyDiagnosis})
        Add(command);
    addSeparator();
    for (PageCommand const command : {PageCommand::Settings, PageCommand::Uninstall})
        Add(command);
    connect(Languages, &QMenu::aboutToShow, this, [this] {
        if (!KnowsLanguages)
            Q_EMIT Requested(PageCommand::ChooseLanguage);
    });
    Translate();
}

void PageMenu::Add(PageCommand p_Command)
{
    QAction* const action = addAction(QString());
    Actions[p_Command] = action;
    connect(action, &QAction::triggered, this, [this, p_Command] { Q_EMIT Requested(p_Command); });
}

void PageMenu::Translate()
{
    for (auto const& action : Actions)
        action.second->setText(CommandText(action.first));
    if (!KnowsLanguages) {
        Languages->clear();
        Languages->addAction(tr("The server is being asked…"))->setEnabled(false);
    }
}

QAction* PageMenu::ActionOf(PageCommand p_Command) const
{
    return Actions.at(p_Command);
}

bool PageMenu::Allows(GameState const& p_State, PageCommand p_Command)
{
    bool const isInstalled = p_State.Status && p_State.Status->IsInstalled;
    bool const isThere = isInstalled && p_State.Status->FolderExists;
    bool const isFree = p_State.Session == GameState::Stage::Open && !p_State.Job &&
                        p_State.Status && !p_State.Status->Download;
    switch (p_Command) {
    case PageCommand::Stop:
        return p_State.Job.has_value();
    case PageCommand::StopRepair:
        return p_State.Job && p_State.Job->Kind == Type::Repair;
    case PageCommand::Check:
    case PageCommand::Repair:
        return isFree && isThere;
    case PageCommand::ChooseLanguage:
        return isFree && isInstalled;
    case PageCommand::OpenFolder:
        return isThere;
    case PageCommand::ChangeAccount:
        return isFree && isThere && !p_State.IsGameRunning;
    case PageCommand::Uninstall:
        return isFree && isInstalled && !p_State.IsGameRunning;
    default:
        return true;
    }
}

void PageMenu::Show(GameState const& p_State)
{
    for (auto const& action : Actions)
        action.second->setEnabled(Allows(p_State, action.first));
    Actions[PageCommand::Stop]->setVisible(p_State.Job.has_value());
    Actions[PageCommand::StopRepair]->setVisible(Allows(p_State, PageCommand::StopRepair));
}

void PageMenu::ShowLanguages(std::vector<Launcher::ApplicationManifestLocale> const& p_Languages,
                             QString const& p_Chosen)
{
    KnowsLanguages = !p_Languages.empty();
    if (!KnowsLanguages)
        return Translate();
    Languages->clear();
    auto* const group = new QActionGroup(Languages);
    for (auto const& language : p_Languages) {
        QAction* const action = Languages->addAction(language.Name);
        action->setCheckable(true);
        action->setChecked(language.Tag == p_Chosen);
        action->setActionGroup(group);
        QString const tag = language.Tag;
        connect(action, &QAction::triggered, this, [this, tag] { Q_EMIT LanguageChosen(tag); });
    }
}

} // namespace Varnholt::Host
