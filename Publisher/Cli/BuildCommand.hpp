#pragma once

#include "Publisher/Cli/SigningArguments.hpp"
#include "Publisher/Publication/PublishOptions.hpp"

#include <string>

namespace CLI {
class App;
}

namespace Varnholt::Publisher {

/// `varnholt-publish build`
class BuildCommand {
public:
    /// Adds the command and its options; p_Program keeps a reference to this object.
    explicit BuildCommand(CLI::App& p_Program);

    bool IsChosen() const;

    /// \return exit status
    /// \throws Failure
    int Run() const;

private:
    void AddOptions();
    PublishOptions Options() const;

    CLI::App* Command;
    std::string Source;
    std::string Output;
    std::string Build;
    std::string Name;
    int Number = 0;
    std::string Rules;
    std::string LocaleList;
    std::string Hosts;
    std::string RealmList;
    std::string AppId = "pelmora_app";
    std::string Platform = "mac";
    int Jobs = 0;
    bool Local = false;
    bool Dev = false;
    bool NoIndex = false;
    bool Rehash = false;
    bool DryRun = false;
    bool IfChanged = false;
    SigningArguments Signing;
    bool Json = false;
};

} // namespace Varnholt::Publisher
