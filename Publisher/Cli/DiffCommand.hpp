#pragma once

#include "Publisher/Publication/BuildDifference.hpp"

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace Varnholt::Publisher {

/// `varnholt-publish diff`
class DiffCommand {
public:
    /// Adds the command and its options; p_Program keeps a reference to this object.
    explicit DiffCommand(CLI::App& p_Program);

    bool IsChosen() const;

    /// \return exit status
    /// \throws Failure
    int Run() const;

private:
    void PrintText(BuildDifference const& p_Difference) const;
    void PrintJson(BuildDifference const& p_Difference) const;

    CLI::App* Command;
    std::string Output;
    std::string AppId = "pelmora_app";
    std::vector<std::string> Builds;
    std::string Locale;
    int Players = 0;
    bool Json = false;
};

} // namespace Varnholt::Publisher
