#pragma once

#include "Publisher/Verification/VerificationSummary.hpp"

#include <string>

namespace CLI {
class App;
}

namespace Varnholt::Publisher {

/// `varnholt-publish verify`
class VerifyCommand {
public:
    /// Adds the command and its options; p_Program keeps a reference to this object.
    explicit VerifyCommand(CLI::App& p_Program);

    bool IsChosen() const;

    /// \return exit status: of a failure when there are defects
    /// \throws Failure
    int Run() const;

private:
    VerificationSummary Verify() const;
    static void PrintText(VerificationSummary const& p_Summary);
    static void PrintJson(VerificationSummary const& p_Summary);

    CLI::App* Command;
    std::string Output;
    std::string Url;
    std::string AppId = "pelmora_app";
    int Sample = 20;
    bool ReadsAll = false;
    bool Repairs = false;
    bool Json = false;
    std::string Source;
    std::string TrustKey;
};

} // namespace Varnholt::Publisher
