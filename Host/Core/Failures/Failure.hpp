#pragma once

#include <QMetaType>
#include <QString>
#include <QVector>

namespace Varnholt::Host {

/// What can go wrong, as the user is told it. Each has its row in the table of `Failure`.
enum class FailureKind {
    Other,
    NotInstalled,
    LocaleNotOffered,
    ModuleMissing,
    ModuleForeign,
    ModuleUnloadable,
    ModuleNotLoaded,
    SessionBusy,
    ServerUnreachable,
    ServerRefusal,
    ServerSilent,
    CertificateWrong,
    ProxyUnreachable,
    OfflineUnknown,
    ContentInvalid,
    SignatureMissing,
    SignatureWrong,
    KeyWrong,
    GameWrong,
    RolledBack,
    SignatureExpired,
    ManifestDiffers,
    GameUnverified,
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
    SettingsUnreadable,
    SettingsUnwritable,
    FolderLocked,
    GameRunning,
    ExecutableUnknown,
    ExecutableMissing,
    ExecutableUnusable,
    WrapperUnusable,
    GameFailed,
    FilesNotRemoved,
    UpdateAvailable,
    FilesWrong,
    MirrorsWrong,
    NothingRunning,
    RunLost,
    OptionUnknown,
    OptionInvalid,
    ConfirmationMissing,
    Interrupted,
};

/// Why something was not done, ready to be told: one sentence, what to do, and an exit status.
struct Failure {
    FailureKind Kind = FailureKind::Other;
    QString Subject; ///< the file, folder or address concerned
    QString Detail;  ///< the cause, as far as it is known; may be empty

    /// A word for programs, the same in every version: "disk-full".
    QString Identifier() const;
    /// One of `c_ExitStatuses`.
    int ExitStatus() const;
    /// What failed, without a full stop.
    QString Sentence() const;
    /// What to do about it, as the end of a sentence.
    QString Remedy() const;
    /// True for what may pass by itself: trying again later makes sense.
    bool IsNetwork() const;

    /// Every kind, in an order that is good to read.
    static QVector<FailureKind> Kinds();
    /// The kind with an identifier; `Other` when there is none.
    static FailureKind Named(QString const& p_Identifier);
};

} // namespace Varnholt::Host

Q_DECLARE_METATYPE(Varnholt::Host::Failure)
