#include "Host/Core/Jobs/JobTable.hpp"

#include <algorithm>
#include <iterator>

namespace Varnholt::Host {

std::unique_ptr<Job> MakeJobFor(RunContext const& p_Context, RunRequest const& p_Request)
{
    using Type = RunRequest::Type;

    struct Row {
        Type Kind;
        unsigned Traits;
        JobMaker Make;
    };

    bool const isQuick = p_Request.Quick;
    Row const rows[] = {
        {Type::Install, Job::NeedsServers | Job::IsPreview | Job::CanPause | Job::Records,
         MakeInstallJob},
        {Type::Update, Job::NeedsServers | Job::CanPause | Job::Records, MakeUpdateJob},
        {Type::Repair, Job::NeedsServers | Job::CanPause | Job::Records, MakeUpdateJob},
        {Type::Check, Job::IsPreview, isQuick ? MakeQuickCheckJob : MakeCheckJob},
        {Type::PreviewInstall, Job::IsPreview, MakeCheckJob},
        {Type::Verify, Job::UsesCopies | Job::IsPreview, MakeVerifyJob},
        {Type::AskMirrors, Job::NeedsServers | Job::IsPreview, MakeMirrorsJob},
        {Type::PreviewUninstall, Job::IsPreview, MakeUninstallJob},
        {Type::Uninstall, Job::Records, MakeUninstallJob},
        {Type::Play, Job::UsesCopies, MakePlayJob},
        {Type::ListLocales, Job::IsPreview, MakeLocalesJob},
        {Type::ChooseLocale, Job::Records, MakeLocalesJob},
    };
    Row const& row = *std::find_if(std::begin(rows), std::end(rows),
                                   [&](Row const& p_Row) { return p_Row.Kind == p_Request.Kind; });
    return row.Make(p_Context, p_Request, row.Traits);
}

} // namespace Varnholt::Host
