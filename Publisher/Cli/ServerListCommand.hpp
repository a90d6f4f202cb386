#pragma once

#include "Publisher/Cli/SigningArguments.hpp"

#include <QByteArray>
#include <QString>

#include <string>

namespace CLI {
class App;
}

namespace Varnholt::Publisher {

/// `varnholt-publish hosts` and `varnholt-publish realmlist`
class ServerListCommand {
public:
    enum class List { Hosts, RealmList };

    /// Adds the command and its options; p_Program keeps a reference to this object.
    ServerListCommand(CLI::App& p_Program, List p_List);

    bool IsChosen() const;

    /// \return exit status
    /// \throws Failure
    int Run() const;

private:
    QString Path() const;
    /// The list's text of the value that was given. \throws Failure
    QByteArray Text() const;

    List Chosen;
    CLI::App* Command;
    std::string Output;
    std::string Value;
    std::string AppId = "pelmora_app";
    SigningArguments Signing;
    bool Json = false;
};

} // namespace Varnholt::Publisher
