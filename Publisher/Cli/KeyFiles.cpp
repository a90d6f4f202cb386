#include "Publisher/Cli/KeyFiles.hpp"

#include "Programs/Printable.hpp"
#include "Programs/SilentTerminal.hpp"
#include "Programs/StandardStreams.hpp"
#include "Publisher/Cli/Interruption.hpp"
#include "Publisher/Failure.hpp"
#include "Signing/KeyFailure.hpp"

#include <QFile>

#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace Varnholt::Publisher::KeyFiles {

namespace {

constexpr int c_MaximumBytes = 4096;
constexpr int c_SignalStatus = 128;

[[noreturn]] void Fail(QString const& p_File, QString const& p_Cause)
{
    throw Failure(p_File + QStringLiteral(": ") + p_Cause);
}

/// Waits for standard input. Throws when a signal asks for the end, so that the terminal gets its
/// echo back.
void WaitForInput()
{
    constexpr int c_LookMilliseconds = 50;

    pollfd input{STDIN_FILENO, POLLIN, 0};
    for (int ready = 0; ready == 0 || (ready < 0 && errno == EINTR);) {
        if (int const signal = Interruption::Signal())
            throw Failure(QStringLiteral("interrupted"), c_SignalStatus + signal);
        ready = ::poll(&input, 1, c_LookMilliseconds);
    }
}

QByteArray FirstLine()
{
    QByteArray line;
    char byte = 0;
    while (line.size() < c_MaximumBytes) {
        WaitForInput();
        if (::read(STDIN_FILENO, &byte, 1) != 1 || byte == '\n')
            break;
        line += byte;
    }
    return line;
}

QByteArray Ask(QString const& p_Question)
{
    Programs::StandardStreams::Write(stderr, Programs::Printable(p_Question));
    return FirstLine();
}

/// \param p_Twice ask a terminal so, and compare
QByteArray Password(QString const& p_File, QString const& p_PasswordFile, bool p_Twice)
{
    if (!p_PasswordFile.isEmpty()) {
        QFile file(p_PasswordFile);
        if (!file.open(QIODevice::ReadOnly))
            Fail(p_PasswordFile, QStringLiteral("cannot be read: ") + file.errorString());
        return file.readLine(c_MaximumBytes).split('\n').first();
    }
    if (qEnvironmentVariableIsSet("VARNHOLT_KEY_PASSWORD"))
        return qgetenv("VARNHOLT_KEY_PASSWORD");
    if (::isatty(STDIN_FILENO) != 1)
        return FirstLine();
    Interruption::Watch();
    Programs::SilentTerminal const silence;
    QByteArray password = Ask(QStringLiteral("Password of %1: ").arg(p_File));
    if (p_Twice && Ask(QStringLiteral("\nOnce more: ")) != password)
        Fail(p_File, QStringLiteral("the passwords differ"));
    return password;
}

} // namespace

Signing::SecretKey Load(QString const& p_File, QString const& p_PasswordFile)
{
    try {
        bool const isLocked = Signing::SecretKey::NeedsPassword(p_File);
        return Signing::SecretKey::Load(p_File, isLocked ? Password(p_File, p_PasswordFile, false)
                                                         : QByteArray());
    } catch (Signing::KeyFailure const& failure) {
        Fail(p_File, QString::fromUtf8(failure.what()));
    }
}

QByteArray NewPassword(QString const& p_File, QString const& p_PasswordFile)
{
    QByteArray password = Password(p_File, p_PasswordFile, true);
    if (password.isEmpty())
        Fail(p_File,
             QStringLiteral("the password is empty: --no-password makes a key without one"));
    return password;
}

Signing::PublicKey Public(QString const& p_Key)
{
    if (auto const key = Signing::PublicKey::FromText(p_Key.toUtf8()))
        return *key;
    QFile file(p_Key);
    if (file.open(QIODevice::ReadOnly)) {
        if (auto const key = Signing::PublicKey::FromText(file.read(c_MaximumBytes)))
            return *key;
    }
    throw Failure(QStringLiteral("\"%1\" is neither a public key nor a file of one").arg(p_Key),
                  Failure::c_Usage);
}

} // namespace Varnholt::Publisher::KeyFiles
