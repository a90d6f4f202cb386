#pragma once

#include "Signing/PublicKey.hpp"
#include "Signing/SecretKey.hpp"

#include <QByteArray>
#include <QString>

/// Keys as a command line names them. Passwords come from a file, from the environment variable
/// VARNHOLT_KEY_PASSWORD, or from standard input, where a terminal is asked without echo.
namespace Varnholt::Publisher::KeyFiles {

/// \param p_PasswordFile empty for none \throws Failure
Signing::SecretKey Load(QString const& p_File, QString const& p_PasswordFile);

/// A password for a new key; asked for twice on a terminal. \throws Failure when it is empty
QByteArray NewPassword(QString const& p_File, QString const& p_PasswordFile);

/// \param p_Key the key itself, or the name of a file of it \throws Failure
Signing::PublicKey Public(QString const& p_Key);

} // namespace Varnholt::Publisher::KeyFiles
