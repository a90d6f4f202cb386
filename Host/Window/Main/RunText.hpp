#pragma once

#include "Host/Core/Jobs/RunRequest.hpp"
#include "Host/Core/Jobs/RunResult.hpp"

#include <QString>

/// Runs in sentences, for the history.
namespace Varnholt::Host::RunText {

/// "The update begins."
QString Begun(RunRequest const& p_Request);
/// Of a run that has ended without a problem.
QString Done(RunRequest const& p_Request, RunResult const& p_Result);
/// What a failure says, with a capital and a full stop.
QString Sentence(Failure const& p_Failure);
/// A text that begins a sentence; an address or a path stays as it is.
QString Capitalized(QString p_Text);

} // namespace Varnholt::Host::RunText
