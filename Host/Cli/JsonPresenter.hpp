#pragma once

#include "Host/Cli/Presenter.hpp"

#include <QElapsedTimer>
#include <QJsonObject>

namespace Varnholt::Host {

class Console;

/// For programs: one object per line on standard output. Its form is documented in
/// docs/host-json.md and grows only by new keys and types.
class JsonPresenter : public Presenter {
public:
    explicit JsonPresenter(Console& p_Console);

    void ShowInfo(ModuleInfo const& p_Info) override;
    void ShowStatus(InstallStatus const& p_Status) override;
    void ShowLocale(QString const& p_Locale) override;
    void ShowOption(QString const& p_Key, QString const& p_Value, QString const& p_Origin,
                    bool p_IsListed) override;
    /// At most twice a second within a phase.
    void ShowProgress(RunSnapshot const& p_Snapshot) override;
    void ShowSpace(VolumeSpace const& p_Space, bool p_IsResult) override;

protected:
    void WriteNotice(Notice const& p_Notice) override;
    void WriteResult(RunRequest const& p_Request, RunResult const& p_Result,
                     QString const& p_Game) override;
    void WriteFailure(Failure const& p_Failure) override;

private:
    /// Adds type and time, unless it has one, and writes the line.
    void Write(char const* p_Type, QJsonObject p_Object);

    Console& Output;
    RunPhase Phase = RunPhase::Idle;
    QElapsedTimer SinceProgress;
};

} // namespace Varnholt::Host
