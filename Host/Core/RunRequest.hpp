#pragma once

#include <QMetaType>
#include <QString>

namespace Varnholt::Host {

/// What a program wants of the module.
struct RunRequest {
    enum class Type {
        Install,
        Update,
        Repair,      ///< compare every file, whatever the pending lists say
        ListLocales, ///< ask the build for its languages; fetches no file
        ChooseLocale,
    };

    Type Kind = Type::Update;
    QString Argument;       ///< the folder (absolute) of an install, the code of a language
    bool Confirmed = false; ///< the user has agreed to what would be refused otherwise
};

} // namespace Varnholt::Host

Q_DECLARE_METATYPE(Varnholt::Host::RunRequest)
