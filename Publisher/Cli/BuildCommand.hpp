#pragma once

#include "Publisher/PublicationSummary.hpp"
#include "Publisher/PublishOptions.hpp"

#include <map>
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
    std::map<QString, QString> Locales() const;
    static void PrintSummary(PublishOptions const& p_Options, PublicationSummary const& p_Summary);

    CLI::App* m_Command;
    std::string m_Source;
    std::string m_Output;
    std::string m_Build;
    std::string m_Name;
    int m_Number = 0;
    std::string m_Rules;
    std::string m_Locales;
    std::string m_Hosts;
    std::string m_RealmList;
    std::string m_AppId = "pelmora_app";
    std::string m_Platform = "mac";
    bool m_Dev = false;
};

} // namespace Varnholt::Publisher
