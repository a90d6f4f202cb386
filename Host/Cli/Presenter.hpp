#pragma once

#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Failures/Notice.hpp"
#include "Host/Core/Jobs/RunRequest.hpp"
#include "Host/Core/Jobs/RunResult.hpp"
#include "Host/Core/Jobs/RunSnapshot.hpp"
#include "Host/Core/Module/ModuleInfo.hpp"
#include "Host/Core/Session/InstallStatus.hpp"

#include <QString>

#include <memory>

namespace Varnholt::Host {

class Console;

/// Tells what a command does and comes to, in one form or another; the log file is told too.
class Presenter {
public:
    virtual ~Presenter() = default;

    virtual void ShowInfo(ModuleInfo const& p_Info) = 0;
    virtual void ShowStatus(InstallStatus const& p_Status) = 0;
    virtual void ShowLocale(QString const& p_Locale) = 0;
    /// \param p_Origin who gives it; empty when that was not asked
    /// \param p_IsListed one of several, otherwise the one that was asked for
    virtual void ShowOption(QString const& p_Key, QString const& p_Value, QString const& p_Origin,
                            bool p_IsListed) = 0;
    virtual void ShowProgress(RunSnapshot const& p_Snapshot) = 0;
    /// The room on a volume before the first byte comes. \param p_IsResult it was asked for
    virtual void ShowSpace(VolumeSpace const& p_Space, bool p_IsResult) = 0;
    /// Something that a user may want to know.
    void ShowNotice(Notice const& p_Notice);
    /// The findings of a run, and how it has ended. \return the exit status
    int ShowResult(RunRequest const& p_Request, RunResult const& p_Result, QString const& p_Game);
    /// A failure outside of a run. \return the exit status
    int ShowFailure(Failure const& p_Failure);

protected:
    virtual void WriteResult(RunRequest const& p_Request, RunResult const& p_Result,
                             QString const& p_Game) = 0;
    virtual void WriteNotice(Notice const& p_Notice) = 0;
    virtual void WriteFailure(Failure const& p_Failure) = 0;
};

/// For people.
std::unique_ptr<Presenter> MakeTextPresenter(Console& p_Console);
/// For programs: one object per line on standard output. Its form is documented in
/// docs/host-json.md and grows only by new keys and types.
std::unique_ptr<Presenter> MakeJsonPresenter(Console& p_Console);

} // namespace Varnholt::Host
