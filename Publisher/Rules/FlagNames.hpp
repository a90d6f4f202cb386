#pragma once

#include "Publisher/Tree/ContentPlatform.hpp"

#include <QString>
#include <QStringList>

#include <optional>

namespace Varnholt::Publisher::FlagNames {

/// The manifest flag with that name in a rules file; nothing for an unknown name.
std::optional<qint32> Flag(QString const& p_Name, ContentPlatform p_Platform);

/// The names of the flags that are set, in the order of the flags.
QStringList NamesOf(qint32 p_Flags, ContentPlatform p_Platform);

/// The flag that marks the game's executable.
qint32 GameExecutable(ContentPlatform p_Platform);

/// Every known name, in the order of the flags.
QStringList All();

} // namespace Varnholt::Publisher::FlagNames
