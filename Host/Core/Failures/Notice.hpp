#pragma once

#include <QDateTime>
#include <QMetaType>
#include <QString>

namespace Varnholt::Host {

/// What a run goes on after, as the user is told it. Each has its row in the table of `Notice`.
enum class NoticeKind {
    ModuleMessage,
    MirrorsUnknown,
    ServersDoneWithout,
    LocaleLeftOut,
    RealmListKept,
    CopiesNotKept,
    FolderNotLocked,
    GameFoundAgain,
    GameIncomplete,
    OutputNotKept,
    GameRunningAlready,
    LoginNotPrepared,
    LoginMisreadable,
    GameGoesOn,
    GameAwaited,
    PasswordMissing,
    PasswordUnreadable,
    PasswordNotRemembered,
    PasswordNotForgotten,
    NothingDeleted,
    RateUnlimited,
    RateLimited,
    Stopping,
};

/// Something that a user may want to know, and that ends nothing.
struct Notice {
    enum class Level {
        Information, ///< it is as it should be
        Warning,     ///< something is missing or has gone wrong
    };

    NoticeKind Kind = NoticeKind::ModuleMessage;
    QString Subject = {}; ///< the file, folder, address or cause concerned
    QString Detail = {};  ///< what more there is to say; may be empty
    QDateTime Time = QDateTime::currentDateTimeUtc();

    /// A word for programs, the same in every version: "realm-list-kept".
    QString Identifier() const;
    Level Severity() const;
    /// The same as a word for programs.
    QString SeverityName() const;
    /// One or two sentences, with the remedy.
    QString Text() const;
    /// What to do about it, as the end of a sentence; mostly empty.
    QString Remedy() const;
};

} // namespace Varnholt::Host

Q_DECLARE_METATYPE(Varnholt::Host::Notice)
