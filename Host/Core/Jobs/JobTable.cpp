#include "Host/Core/Jobs/JobTable.hpp"

#include "Host/Core/Jobs/CheckJob.hpp"
#include "Host/Core/Jobs/InstallJob.hpp"
#include "Host/Core/Jobs/LocalesJob.hpp"
#include "Host/Core/Jobs/MirrorsJob.hpp"
#include "Host/Core/Jobs/PlayJob.hpp"
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
                             Job::Traits p_Traits)
{
    return std::make_unique<Which>(p_Context, p_Request, p_Traits);
}

struct Row {
    Type Kind;
    bool Quick;
    Job::Traits May;
    std::unique_ptr<Job> (*Make)(RunContext const&, RunRequest const&, Job::Traits);
};

constexpr Row c_Table[] = {
    // NeedsServers, UsesCopies, IsPreview, CanPause, Records
    {Type::Install, false, {true, false, true, true, true}, MakeOne<InstallJob>},
    {Type::Update, false, {true, false, false, true, true}, MakeOne<UpdateJob>},
    {Type::Repair, false, {true, false, false, true, true}, MakeOne<RepairJob>},
    {Type::Check, false, {false, false, true, false, false}, MakeOne<CheckJob>},
    {Type::Check, true, {false, false, true, false, false}, MakeOne<QuickCheckJob>},
    {Type::Verify, false, {false, true, true, false, false}, MakeOne<VerifyJob>},
    {Type::AskMirrors, false, {true, false, true, false, false}, MakeOne<MirrorsJob>},
    {Type::Uninstall, false, {false, false, false, false, true}, MakeOne<UninstallJob>},
    {Type::Play, false, {false, true, false, false, false}, MakeOne<PlayJob>},
    {Type::ListLocales, false, {false, false, true, false, false}, MakeOne<ListLocalesJob>},
    {Type::ChooseLocale, false, {false, false, false, false, true}, MakeOne<ChooseLocaleJob>},
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
    return row.Make(p_Context, p_Request, row.May);
}

Job::Traits TraitsOf(RunRequest const& p_Request)
{
    return RowOf(p_Request).May;
}

} // namespace Varnholt::Host::JobTable
