#include "Host/Cli/Presenter.hpp"

#include "Host/Core/Session/MessageLog.hpp"

namespace Varnholt::Host {

namespace {

void Log(Failure const& p_Failure)
{
    MessageLog::Write(QStringLiteral("%1: %2; %3")
                          .arg(p_Failure.Identifier(), p_Failure.Sentence(), p_Failure.Remedy()));
}

} // namespace

void Presenter::ShowNotice(Notice const& p_Notice)
{
    MessageLog::Write(QStringLiteral("%1: %2: %3")
                          .arg(p_Notice.SeverityName(), p_Notice.Identifier(), p_Notice.Text()));
    WriteNotice(p_Notice);
}

int Presenter::ShowResult(RunRequest const& p_Request, RunResult const& p_Result,
                          QString const& p_Game)
{
    if (p_Result.Problem)
        Log(*p_Result.Problem);
    WriteResult(p_Request, p_Result, p_Game);
    return p_Result.Problem ? p_Result.Problem->ExitStatus() : EXIT_SUCCESS;
}

int Presenter::ShowFailure(Failure const& p_Failure)
{
    Log(p_Failure);
    WriteFailure(p_Failure);
    return p_Failure.ExitStatus();
}

} // namespace Varnholt::Host
