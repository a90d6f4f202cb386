#pragma once

#include <QMetaType>
#include <QString>

namespace Varnholt::Host {

/// What a button or a menu entry of a page asks for.
enum class PageCommand {
    Install,
    Continue, ///< an installation that is not complete
    Update,
    Play,
    TryAgain,
    Resume, ///< a paused job
    Pause,
    Stop,
    Check,
    Repair,
    StopRepair,
    ChooseFolder, ///< another one for the same installation
    OpenFolder,
    ShowFiles, ///< those that were given up
    ShowOutput,
    ShowLog,
    ShowHistory,
    CopyDiagnosis,
    ChooseLanguage,
    ChangeAccount, ///< or forget it
    Settings,
    Uninstall,
};

/// As a button or a menu shows it, with its mnemonic.
QString CommandText(PageCommand p_Command);

} // namespace Varnholt::Host

Q_DECLARE_METATYPE(Varnholt::Host::PageCommand)
