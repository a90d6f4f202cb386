#pragma once

#include "Host/Window/Main/GameState.hpp"

#include <utility>
#include <vector>

/// States of a game, made by hand.
namespace Varnholt::TestSupport::PageStates {

/// Complete and at rest.
Host::GameState Complete();
Host::GameState NotInstalled();
/// In the middle of a job, with figures of many digits and a long name.
Host::GameState Working(Host::RunRequest::Type p_Kind, Host::RunPhase p_Phase);
/// After a job that has ended like that.
Host::GameState Failed(Host::Failure const& p_Failure);
/// A failure of that kind with a subject and a detail.
Host::Failure FailureOf(Host::FailureKind p_Kind);
/// One of each that a page looks another way in, with a name.
std::vector<std::pair<char const*, Host::GameState>> All();

} // namespace Varnholt::TestSupport::PageStates
