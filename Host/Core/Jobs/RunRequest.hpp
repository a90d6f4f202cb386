#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>

namespace Varnholt::Host {

/// What a program wants of the module.
struct RunRequest {
    enum class Type {
        Install,
        Update,
        Repair,           ///< compare every file, whatever the pending lists say
        Check,            ///< find out what an update would fetch; changes nothing
        Verify,           ///< compare every file; changes nothing
        AskMirrors,       ///< find out which servers of content are in order; changes nothing
        Uninstall,        ///< forget the installation, with or without its files
        Play,             ///< start the game, logged in when account and password are given
        PreviewInstall,   ///< find out what an installation would fetch; creates nothing
        PreviewUninstall, ///< find out what an uninstallation would delete; changes nothing
        ListLocales,      ///< ask the build for its languages; fetches no file
        ChooseLocale,
    };

    Type Kind = Type::Update;
    QString Argument; ///< folder (absolute) of an install or its preview, code of a language,
                      ///< account to log in
    QString Password; ///< of that account
    QStringList GameArguments; ///< of the game, behind the module's own
    bool Quick = false;        ///< a check asks for the version file only, and looks at no file
    bool DeletesFiles = false; ///< an uninstallation removes the build's files too
    bool Confirmed = false;    ///< the user has agreed to what would be refused otherwise

    /// Whether it compares files and changes none.
    bool IsInspection() const { return Kind == Type::Check || Kind == Type::Verify; }
};

} // namespace Varnholt::Host

Q_DECLARE_METATYPE(Varnholt::Host::RunRequest)
