#pragma once

#include "Host/Core/Module/ModuleInfo.hpp"
#include "Host/Window/Main/GameState.hpp"

#include <QString>
#include <QStringList>

namespace Varnholt::Host {

/// What somebody who helps wants to know, as text to be pasted; in English, with no secret in it.
QString DiagnosisText(ModuleInfo const& p_Module, GameState const& p_State,
                      QStringList const& p_History);

} // namespace Varnholt::Host
