#include "Host/Core/Jobs/JobTable.hpp"

#include "Host/Core/Jobs/CheckJob.hpp"
#include "Host/Core/Jobs/InstallJob.hpp"
#include "Host/Core/Jobs/LocalesJob.hpp"
#include "Host/Core/Jobs/MirrorsJob.hpp"
#include "Host/Core/Jobs/PlayJob.hpp"
#include "Host/Core/Jobs/PreviewInstallJob.hpp"
#include "Host/Core/Jobs/PreviewUninstallJob.hpp"
#include "Host/Core/Jobs/QuickCheckJob.hpp"
#include "Host/Core/Jobs/RepairJob.hpp"
#include "Host/Core/Jobs/UninstallJob.hpp"
#include "Host/Core/Jobs/UpdateJob.hpp"
#include "Host/Core/Jobs/VerifyJob.hpp"

#include <algorithm>
#include <iterator>

namespace Varnholt::Host::JobTable {

namespace {

using Type = RunRequest::Type;

template <typename Which>
std::unique_ptr<Job> MakeOne(RunContext const& p_Context, RunRequest const& p_Request,
                             unsigned p_Traits)
{
    return std::make_unique<Which>(p_Context, p_Request, p_Traits);
}

struct Row {
    Type Kind;
    bool Quick;
    unsigned Traits;
    std::unique_ptr<Job> (*Make)(RunContext const&, RunRequest const&, unsigned);
};

constexpr Row c_Table[] = {
    {Type::Install, false, Job::NeedsServers | Job::IsPreview | Job::CanPause | Job::Records,
     MakeOne<InstallJob>},
    {Type::Update, false, Job::NeedsServers | Job::CanPause | Job::Records, MakeOne<UpdateJob>},
    {Type::Repair, false, Job::NeedsServers | Job::CanPause | Job::Records, MakeOne<RepairJob>},
    {Type::Check, false, Job::IsPreview, MakeOne<CheckJob>},
    {Type::PreviewInstall, false, Job::IsPreview, MakeOne<PreviewInstallJob>},
    {Type::Check, true, Job::IsPreview, MakeOne<QuickCheckJob>},
    {Type::Verify, false, Job::UsesCopies | Job::IsPreview, MakeOne<VerifyJob>},
    {Type::AskMirrors, false, Job::NeedsServers | Job::IsPreview, MakeOne<MirrorsJob>},
    {Type::PreviewUninstall, false, Job::IsPreview, MakeOne<PreviewUninstallJob>},
    {Type::Uninstall, false, Job::Records, MakeOne<UninstallJob>},
    {Type::Play, false, Job::UsesCopies, MakeOne<PlayJob>},
    {Type::ListLocales, false, Job::IsPreview, MakeOne<ListLocalesJob>},
    {Type::ChooseLocale, false, Job::Records, MakeOne<ChooseLocaleJob>},
};

Row const& RowOf(RunRequest const& p_Request)
{
    return *std::find_if(std::begin(c_Table), std::end(c_Table), [&](Row const& p_Row) {
        bool const isQuick = p_Request.Quick && p_Request.Kind == Type::Check;
        return p_Row.Kind == p_Request.Kind && p_Row.Quick == isQuick;
    });
}

} // namespace

std::unique_ptr<Job> Make(RunContext const& p_Context, RunRequest const& p_Request)
{
    Row const& row = RowOf(p_Request);
    return row.Make(p_Context, p_Request, row.Traits);
}

} // namespace Varnholt::Host::JobTable
