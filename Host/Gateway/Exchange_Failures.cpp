#include "Host/Gateway/Exchange.hpp"

#include <algorithm>

namespace Varnholt::Gateway {

/// Whether a server may be asked for a file.
ServerBoard::Filter Exchange::Allowed(FileContent const& p_File) const
{
    auto const only = p_File.HasOneSource ? p_File.OnlyFrom.lock() : nullptr;
    return [&p_File, only](Server const& p_Server) {
        bool const isRefused = p_File.RefusedBy.count(&p_Server) != 0;
        bool const isWrong = p_File.Wrong.count(&p_Server) != 0;
        return !isRefused && !isWrong && (!p_File.OfDefaultServer || p_Server.IsDefault) &&
               (!only || only.get() == &p_Server || only->IsOnTrial());
    };
}

void Exchange::NoteFailure(FileTransfer& p_Transfer, FetchProblem const& p_Problem)
{
    FileContent& file = *p_Transfer.File;
    Fail(p_Problem);
    file.Problem = p_Problem;
    if (p_Transfer.IsRefused)
        Refuse(file, *p_Transfer.From, p_Problem);
    else
        Board.NoteFailure(*p_Transfer.From, p_Transfer.RetryAfter, Clock::now());
    if (!file.Size && !file.HasNoSize && !file.IsAsked && !file.Refusal)
        SizesWanted.push_back(p_Transfer.File);
}

void Exchange::Refuse(FileContent& p_File, Server& p_Server, FetchProblem const& p_Problem)
{
    constexpr int c_MostRefusals = 3; // a mirror that lacks more than that lacks everything

    p_File.RefusedBy.insert(&p_Server);
    if (++p_Server.Refusals > c_MostRefusals && !p_Server.IsDefault)
        Board.NoteFailure(p_Server, 0, Clock::now());
    auto const allowed = Allowed(p_File);
    auto const& servers = Board.All();
    bool const isHopeless =
        std::none_of(servers.begin(), servers.end(),
                     [&](std::shared_ptr<Server> const& p_Other) { return allowed(*p_Other); });
    if (isHopeless)
        p_File.Refusal = p_Problem;
    p_File.RefusedAt = Clock::now();
    SizesKnown.reset();
}

} // namespace Varnholt::Gateway
