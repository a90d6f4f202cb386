#include "Publisher/Cli/SigningArguments.hpp"

#include "Publisher/Cli/KeyFiles.hpp"

#include <CLI/CLI.hpp>

namespace Varnholt::Publisher {

namespace {

constexpr int c_MostDays = 3650;

} // namespace

void SigningArguments::AddTo(CLI::App& p_Command, Kind p_Kind)
{
    CLI::Option* const key =
        p_Command.add_option("--sign-key", Key, "Secret key that signs what says what is current");
    p_Command
        .add_option("--password-file", PasswordFile,
                    "File whose first line is the key's password (default: the variable "
                    "VARNHOLT_KEY_PASSWORD, or standard input)")
        ->needs(key);
    p_Command
        .add_option("--expires", Days,
                    "Days after which clients want newer signatures (default: never)")
        ->check(CLI::Range(1, c_MostDays))
        ->needs(key);
    if (p_Kind == Kind::Signing)
        key->required();
    else
        p_Command
            .add_flag("--unsigned", Unsigned,
                      "Change a signed tree without its key; players who trust the key take "
                      "nothing more of it until \"sign\"")
            ->excludes(key);
}

SigningOptions SigningArguments::Options() const
{
    SigningOptions options;
    options.Unsigned = Unsigned;
    if (!Key.empty())
        options.Key =
            KeyFiles::Load(QString::fromStdString(Key), QString::fromStdString(PasswordFile));
    if (Days > 0)
        options.Days = Days;
    return options;
}

} // namespace Varnholt::Publisher
