#include "Host/Window/Pages/PageCommand.hpp"

#include <QCoreApplication>

namespace Varnholt::Host {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::PageCommand)
};

} // namespace

QString CommandText(PageCommand p_Command)
{
    switch (p_Command) {
    case PageCommand::Install:
        return Texts::tr("&Install");
    case PageCommand::Continue:
    case PageCommand::Resume:
        return Texts::tr("&Continue");
    case PageCommand::Update:
        return Texts::tr("&Update");
    case PageCommand::Play:
        return Texts::tr("&Play");
    case PageCommand::TryAgain:
        return Texts::tr("&Try again");
    case PageCommand::Pause:
        return Texts::tr("P&ause");
    case PageCommand::Stop:
        return Texts::tr("S&top");
    case PageCommand::Check:
        return Texts::tr("&Check files");
    case PageCommand::Repair:
        return Texts::tr("&Repair");
    case PageCommand::StopRepair:
        return Texts::tr("Stop r&epair");
    case PageCommand::ChooseFolder:
        return Texts::tr("Choose another &folder…");
    case PageCommand::OpenFolder:
        return Texts::tr("&Open folder");
    case PageCommand::ShowFiles:
        return Texts::tr("Show &files");
    case PageCommand::ShowOutput:
        return Texts::tr("Show &output");
    case PageCommand::ShowLog:
        return Texts::tr("Show &log");
    case PageCommand::ShowHistory:
        return Texts::tr("&History");
    case PageCommand::CopyDiagnosis:
        return Texts::tr("Copy &diagnosis");
    case PageCommand::ChooseLanguage:
        return Texts::tr("La&nguage");
    case PageCommand::Settings:
        return Texts::tr("&Settings…");
    case PageCommand::Uninstall:
        return Texts::tr("&Uninstall…");
    }
    return {};
}

} // namespace Varnholt::Host
