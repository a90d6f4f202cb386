#pragma once

#include <initializer_list>
#include <string>

namespace CLI {
class App;
}

namespace Varnholt::Signing {
class PublicKey;
}

namespace Varnholt::Publisher {

/// `varnholt-publish keys`
class KeysCommand {
public:
    /// Adds the command and its options; p_Program keeps a reference to this object.
    explicit KeysCommand(CLI::App& p_Program);

    bool IsChosen() const;

    /// \return exit status
    /// \throws Failure
    int Run() const;

private:
    void Make() const;
    void Show() const;
    void Change() const;
    void Print(Signing::PublicKey const& p_Key) const;
    /// \throws Failure unless exactly these are given of what not all actions take
    void CheckGiven(std::initializer_list<char const*> p_Names) const;

    CLI::App* Command;
    std::string Action;
    std::string File;
    std::string PasswordFile;
    std::string Output;
    std::string Old;
    std::string New;
    std::string NewPasswordFile;
    bool WithoutPassword = false;
    bool Json = false;
};

} // namespace Varnholt::Publisher
