#pragma once

#include "Host/Cli/Presenter.hpp"
#include "Host/Cli/ProgressView.hpp"

namespace Varnholt::Host {

class Console;

/// For people.
class TextPresenter : public Presenter {
public:
    explicit TextPresenter(Console& p_Console);

    void ShowInfo(ModuleInfo const& p_Info) override;
    void ShowStatus(InstallStatus const& p_Status) override;
    void ShowLocale(QString const& p_Locale) override;
    void ShowOption(QString const& p_Key, QString const& p_Value, QString const& p_Origin,
                    bool p_IsListed) override;
    void ShowProgress(RunSnapshot const& p_Snapshot) override;
    void ShowSpace(VolumeSpace const& p_Space, bool p_IsResult) override;

protected:
    void WriteNotice(Notice const& p_Notice) override;
    void WriteResult(RunRequest const& p_Request, RunResult const& p_Result,
                     QString const& p_Game) override;
    void WriteFailure(Failure const& p_Failure) override;

private:
    void Print(QStringList const& p_Lines);

    Console& Output;
    ProgressView View;
};

} // namespace Varnholt::Host
