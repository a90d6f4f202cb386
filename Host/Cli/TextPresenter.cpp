#include "Host/Cli/Console.hpp"
#include "Host/Cli/Presenter.hpp"
#include "Host/Cli/ProgressText.hpp"
#include "Host/Cli/Reports.hpp"

#include <QElapsedTimer>

namespace Varnholt::Host {

namespace {

class TextPresenter : public Presenter {
public:
    explicit TextPresenter(Console& p_Console)
        : Output(p_Console)
    {
    }

    void ShowInfo(ModuleInfo const& p_Info) override { Print(Reports::Info(p_Info)); }
    void ShowStatus(InstallStatus const& p_Status) override { Print(Reports::Status(p_Status)); }
    void ShowLocale(QString const& p_Locale) override { Print({p_Locale}); }

    void ShowOption(QString const& p_Key, QString const& p_Value, QString const& p_Origin,
                    bool p_IsListed) override
    {
        QString const line = p_IsListed ? QStringLiteral("%1=%2").arg(p_Key, p_Value) : p_Value;
        Print({p_Origin.isEmpty() ? line : QStringLiteral("%1  (%2)").arg(line, p_Origin)});
    }

    /// A line redrawn in place on a terminal, otherwise a plain line at each new phase and every
    /// few seconds.
    void ShowProgress(RunSnapshot const& p_Snapshot) override
    {
        constexpr qint64 c_LineMilliseconds = 5'000;

        if (Output.IsQuiet())
            return;
        bool const isNew = p_Snapshot.Phase != Phase;
        Phase = p_Snapshot.Phase;
        // How it ended is told in full by the result.
        if (Phase == RunPhase::Finished || Phase == RunPhase::Failed)
            return Output.ShowStatus({});
        if (Output.IsTerminal())
            return Output.ShowStatus(
                ProgressText::Bar(p_Snapshot, Output.Width() - 1, Output.IsUnicode()));
        if (!isNew && SinceLine.isValid() && !SinceLine.hasExpired(c_LineMilliseconds))
            return;
        SinceLine.start();
        Output.Note(ProgressText::Line(p_Snapshot));
    }

    void ShowSpace(VolumeSpace const& p_Space, bool p_IsResult) override
    {
        if (p_IsResult)
            Output.Result(Reports::Space(p_Space));
        else if (!Output.IsTerminal()) // where the bar has the place
            Output.Note(Reports::Space(p_Space));
    }

protected:
    void WriteNotice(Notice const& p_Notice) override { Output.Note(p_Notice.Text()); }

    void WriteResult(RunRequest const& p_Request, RunResult const& p_Result,
                     QString const& p_Game) override
    {
        Output.ShowStatus({});
        Print(Reports::Findings(p_Request, p_Result));
        if (!p_Result.Problem)
            return Print(Reports::Success(p_Request, p_Result, p_Game));
        if (p_Result.Totals.Files > 0)
            Output.Note(Reports::Totals(p_Request, p_Result.Totals));
        WriteFailure(*p_Result.Problem);
    }

    void WriteFailure(Failure const& p_Failure) override
    {
        Output.ShowStatus({});
        Output.Error(p_Failure.Sentence(), p_Failure.Remedy(),
                     p_Failure.Kind != FailureKind::UpdateAvailable);
    }

private:
    void Print(QStringList const& p_Lines)
    {
        for (QString const& line : p_Lines)
            Output.Result(line);
    }

    Console& Output;
    RunPhase Phase = RunPhase::Idle;
    QElapsedTimer SinceLine;
};

} // namespace

std::unique_ptr<Presenter> MakeTextPresenter(Console& p_Console)
{
    return std::make_unique<TextPresenter>(p_Console);
}

} // namespace Varnholt::Host
