#include "Host/Window/Main/RunText.hpp"

#include <QCoreApplication>

namespace Varnholt::Host::RunText {

namespace {

using Type = RunRequest::Type;

struct RunTexts {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::RunText)
};

} // namespace

QString Begun(RunRequest const& p_Request)
{
    switch (p_Request.Kind) {
    case Type::Install:
        return RunTexts::tr("The installation into %1 begins.").arg(p_Request.Argument);
    case Type::Update:
        return RunTexts::tr("The update begins.");
    case Type::Repair:
        return RunTexts::tr("The repair begins.");
    case Type::Check:
    case Type::Verify:
        return RunTexts::tr("The check begins.");
    case Type::Uninstall:
        return RunTexts::tr("The game is being uninstalled.");
    case Type::Play:
        return RunTexts::tr("The game is being started.");
    case Type::ChooseLocale:
        return RunTexts::tr("The game's language is being changed.");
    case Type::AskMirrors:
    case Type::PreviewInstall:
    case Type::PreviewUninstall:
    case Type::ListLocales:
        break;
    }
    return RunTexts::tr("The servers are being asked.");
}

QString Done(RunRequest const& p_Request, RunResult const& p_Result)
{
    switch (p_Request.Kind) {
    case Type::Install:
    case Type::Update:
    case Type::Repair:
        return RunTexts::tr("The game is complete: %1.").arg(p_Result.BuildText());
    case Type::Check:
        return RunTexts::tr("The game is up to date: %1.").arg(p_Result.BuildText());
    case Type::Verify:
        return RunTexts::tr("Every file of the game is right.");
    case Type::Uninstall:
        return RunTexts::tr("The game is uninstalled.");
    case Type::Play:
        return RunTexts::tr("The game was started.");
    case Type::ChooseLocale:
        return RunTexts::tr("The game's language is changed; an update fetches its files.");
    case Type::AskMirrors:
    case Type::PreviewInstall:
    case Type::PreviewUninstall:
    case Type::ListLocales:
        break;
    }
    return RunTexts::tr("The servers have answered.");
}

QString Sentence(Failure const& p_Failure)
{
    return Capitalized(p_Failure.Sentence()) + QLatin1Char('.');
}

QString Capitalized(QString p_Text)
{
    bool const isAddress = p_Text.section(QLatin1Char(' '), 0, 0).contains(QLatin1Char('/'));
    if (!p_Text.isEmpty() && !isAddress)
        p_Text[0] = p_Text.at(0).toUpper();
    return p_Text;
}

} // namespace Varnholt::Host::RunText
