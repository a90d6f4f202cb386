#pragma once

namespace Varnholt::Host {

/// What can go wrong, as the user is told it. Each has its row in the table of `Failure`.
enum class FailureKind {
    Other,
    NotInstalled,
    LocaleNotOffered,
    ModuleMissing,
    ModuleForeign,
    ModuleUnloadable,
    ServerUnreachable,
    ServerRefusal,
    ServerSilent,
    ContentInvalid,
    BuildEmpty,
    FilesUnreachable,
    FilesGivenUp,
    DiskFull,
    InstalledElsewhere,
    FolderMissing,
    FolderIsFile,
    FolderForbidden,
    FolderForeign,
    FolderUnwritable,
    FolderBlocksFile,
    FileUnwritable,
    LinkLeadsOut,
    SettingsUnwritable,
    FolderLocked,
    GameRunning,
    ExecutableUnknown,
    ExecutableMissing,
    ExecutableUnusable,
    FilesNotRemoved,
    UpdateAvailable,
    FilesWrong,
    MirrorsWrong,
    NothingRunning,
    OptionUnknown,
    OptionInvalid,
    ConfirmationMissing,
    Interrupted,
};

} // namespace Varnholt::Host
