#pragma once

#include "Publisher/Publication/BuildPruning.hpp"

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace Varnholt::Publisher {

/// `varnholt-publish prune`
class PruneCommand {
public:
    /// Adds the command and its options; p_Program keeps a reference to this object.
    explicit PruneCommand(CLI::App& p_Program);

    bool IsChosen() const;

    /// \return exit status
    /// \throws Failure
    int Run() const;

private:
    PruneOptions Options() const;
    void PrintText(PruneSummary const& p_Summary) const;
    void PrintJson(PruneSummary const& p_Summary) const;

    CLI::App* Command;
    std::string Output;
    int Keep = 0;
    std::vector<std::string> Builds;
    std::string AppId = "pelmora_app";
    bool DryRun = false;
    bool Json = false;
};

} // namespace Varnholt::Publisher
