#pragma once

#include <QString>

#include <array>
#include <vector>

namespace Varnholt::Launcher {

/// One language of the launcher's user interface.
struct LauncherLocale {
    int Id = 0;
    QString Name;            ///< English name, "French"
    QString NativeName;      ///< name in the language itself, "Français"
    QString TranslationFile; ///< path of the compiled translation
    QString Code;            ///< four-letter locale code, "frFR"

    /// True for the rows of the table that stand for no language.
    bool IsBlank() const { return Code.isEmpty(); }

    /// The fixed table, indexed by `Id`. Rows 2 and 4 are blank: their languages were withdrawn and
    /// their ids must not be given to others. Safe from any thread.
    static std::array<LauncherLocale, 6> const& Table();

    /// The rows of the table that are languages, in table order.
    static std::vector<LauncherLocale> Available();
};

} // namespace Varnholt::Launcher
