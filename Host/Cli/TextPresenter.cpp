#include "Host/Cli/TextPresenter.hpp"

#include "Host/Cli/Console.hpp"
#include "Host/Cli/Reports.hpp"

namespace Varnholt::Host {

TextPresenter::TextPresenter(Console& p_Console)
    : Output(p_Console)
    , View(p_Console)
{
}

void TextPresenter::ShowInfo(ModuleInfo const& p_Info)
{
    Print(Reports::Info(p_Info));
}

void TextPresenter::ShowStatus(InstallStatus const& p_Status)
{
    Print(Reports::Status(p_Status));
}

void TextPresenter::ShowLocale(QString const& p_Locale)
{
    Print({p_Locale});
}

void TextPresenter::ShowOption(QString const& p_Key, QString const& p_Value,
                               QString const& p_Origin, bool p_IsListed)
{
    QString const line = p_IsListed ? QStringLiteral("%1=%2").arg(p_Key, p_Value) : p_Value;
    Print({p_Origin.isEmpty() ? line : QStringLiteral("%1  (%2)").arg(line, p_Origin)});
}

void TextPresenter::ShowProgress(RunSnapshot const& p_Snapshot)
{
    View.Show(p_Snapshot);
}

void TextPresenter::ShowSpace(VolumeSpace const& p_Space, bool p_IsResult)
{
    if (p_IsResult)
        Output.Result(Reports::Space(p_Space));
    else if (!Output.IsTerminal()) // where the bar has the place
        Output.Note(Reports::Space(p_Space));
}

void TextPresenter::WriteNotice(Notice const& p_Notice)
{
    Output.Note(p_Notice.Text());
}

void TextPresenter::WriteResult(RunRequest const& p_Request, RunResult const& p_Result,
                                QString const& p_Game)
{
    View.Clear();
    Print(Reports::Findings(p_Request, p_Result));
    if (!p_Result.Problem)
        return Print(Reports::Success(p_Request, p_Result, p_Game));
    if (p_Result.Totals.Files > 0)
        Output.Note(Reports::Totals(p_Request, p_Result.Totals));
    WriteFailure(*p_Result.Problem);
}

void TextPresenter::WriteFailure(Failure const& p_Failure)
{
    View.Clear();
    Output.Error(p_Failure.Sentence(), p_Failure.Remedy(),
                 p_Failure.Kind != FailureKind::UpdateAvailable);
}

void TextPresenter::Print(QStringList const& p_Lines)
{
    for (QString const& line : p_Lines)
        Output.Result(line);
}

} // namespace Varnholt::Host
