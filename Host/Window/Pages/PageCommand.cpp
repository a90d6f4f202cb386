#include "Host/Window/Pages/PageCommand.hpp"

#include <QCoreApplication>

namespace Varnholt::Host {

namespace {

struct CommandTexts {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::PageCommand)
};

} // namespace

QString CommandText(PageCommand p_Command)
{
    switch (p_Command) {
    case PageCommand::Install:
        return CommandTexts::tr("&Install");
    case PageCommand::Continue:
    case PageCommand::Resume:
        return CommandTexts::tr("&Continue");
    case PageCommand::Update:
        return CommandTexts::tr("&Update");
    case PageCommand::Play:
        return CommandTexts::tr("&Play");
    case PageCommand::TryAgain:
        return CommandTexts::tr("&Try again");
    case PageCommand::Pause:
        return CommandTexts::tr("P&ause");
    case PageCommand::Stop:
        return CommandTexts::tr("S&top");
    case PageCommand::Check:
        return CommandTexts::tr("&Check files");
    case PageCommand::Repair:
        return CommandTexts::tr("&Repair");
    case PageCommand::StopRepair:
        return CommandTexts::tr("Stop r&epair");
    case PageCommand::ChooseFolder:
        return CommandTexts::tr("Choose another &folder…");
    case PageCommand::OpenFolder:
        return CommandTexts::tr("&Open folder");
    case PageCommand::ShowFiles:
        return CommandTexts::tr("Show &files");
    case PageCommand::ShowOutput:
        return CommandTexts::tr("Show &output");
    case PageCommand::ShowLog:
        return CommandTexts::tr("Show &log");
    case PageCommand::ShowHistory:
        return CommandTexts::tr("&History");
    case PageCommand::CopyDiagnosis:
        return CommandTexts::tr("Copy &diagnosis");
    case PageCommand::ChooseLanguage:
        return CommandTexts::tr("La&nguage");
    case PageCommand::ChangeAccount:
        return CommandTexts::tr("&Account…");
    case PageCommand::Settings:
        return CommandTexts::tr("&Settings…");
    case PageCommand::Uninstall:
        return CommandTexts::tr("&Uninstall…");
    }
    return {};
}

} // namespace Varnholt::Host
