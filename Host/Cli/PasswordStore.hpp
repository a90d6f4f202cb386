#pragma once

#include <QString>

/// The desktop's secret store: the one place where a password outlives the program. Each operation
/// runs an event loop until the store has answered, as the user may have to unlock it first; it
/// also comes back when the program is told to end.
namespace Varnholt::Host::PasswordStore {

struct Answer {
    QString Password; ///< empty: none is kept
    QString Problem;  ///< why the store did not answer; empty when it did
};

Answer Read(QString const& p_Key);
/// \return why it is not kept; empty when it is
QString Write(QString const& p_Key, QString const& p_Password);
/// \return why it may still be kept; empty when it is not
QString Remove(QString const& p_Key);

} // namespace Varnholt::Host::PasswordStore
