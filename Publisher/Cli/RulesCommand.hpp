#pragma once

#include "Publisher/Publication/PublishOptions.hpp"
#include "Publisher/Rules/RuleSet.hpp"

#include <string>

namespace CLI {
class App;
}

namespace Varnholt::Publisher {

/// `varnholt-publish rules`
class RulesCommand {
public:
    /// Adds the command and its options; p_Program keeps a reference to this object.
    explicit RulesCommand(CLI::App& p_Program);

    bool IsChosen() const;

    /// \return exit status
    /// \throws Failure
    int Run() const;

private:
    PublishOptions Options() const;
    void ListFiles(RuleSet const& p_Rules) const;
    void Explain(RuleSet const& p_Rules) const;

    CLI::App* Command;
    std::string Source;
    std::string Rules;
    std::string Path;
    std::string LocaleList;
    std::string Platform = "mac";
    bool Json = false;
};

} // namespace Varnholt::Publisher
