#pragma once

#include "Publisher/Signatures/SigningOptions.hpp"

#include <string>

namespace CLI {
class App;
}

namespace Varnholt::Publisher {

/// The options by which commands that change a tree sign it.
class SigningArguments {
public:
    enum class Kind {
        Change, ///< may go unsigned
        Signing,
    };

    /// Adds them; p_Command keeps a reference to this object.
    void AddTo(CLI::App& p_Command, Kind p_Kind = Kind::Change);

    /// Asks for the key's password when it has one. \throws Failure
    SigningOptions Options() const;

private:
    std::string Key;
    std::string PasswordFile;
    int Days = 0;
    bool Unsigned = false;
};

} // namespace Varnholt::Publisher
