#pragma once

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

} // namespace Varnholt::Host
