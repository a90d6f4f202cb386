#include "Host/Window/Main/WindowParser.hpp"

#include "Host/Cli/OptionText.hpp"

#include <QDir>
#include <QFileInfo>

#include <sstream>

namespace Varnholt::Host {

namespace {

QString Text(std::string const& p_Text)
{
    return QString::fromUtf8(p_Text.c_str(), static_cast<int>(p_Text.size()));
}

QString Absolute(std::string const& p_Path)
{
    return QDir::cleanPath(QDir::current().absoluteFilePath(Text(p_Path)));
}

} // namespace

WindowParser::WindowParser()
{
    Program.set_version_flag("--version", VARNHOLT_VERSION);
    Add("modules", Modules, "DIR",
        "Folder of the modules, one for each game (default: the one beside this program)");
    Add("settings", Settings, "FILE",
        "Settings file of host and module (default: varnholt/host.ini in the user's configuration "
        "folder)");
    Add("content-url", Server, "URL",
        "Content server instead of the module's own, http://HOST[:PORT]/ or https");
    Program.get_option("--content-url")->check([](std::string const& p_Text) {
        return OptionText::WhyNotServer(Text(p_Text)).toStdString();
    });
    Add("log-file", LogFile, "FILE", "Append the module's log to a file");
}

void WindowParser::Add(std::string const& p_Name, std::string& p_Place, char const* p_Takes,
                       std::string const& p_Help)
{
    QString const variable = Text(p_Name).toUpper().replace(QLatin1Char('-'), QLatin1Char('_'));
    auto const check = [](std::string const& p_Text) {
        return p_Text.empty() ? "it is empty" : std::string();
    };
    Program.add_option("--" + p_Name, p_Place, p_Help)
        ->check(CLI::Validator(check, ""))
        ->envname("VARNHOLT_" + variable.toStdString())
        ->type_name(p_Takes);
}

Choice WindowParser::Parse(int p_Count, char const* const* p_Arguments)
{
    Program.parse(p_Count, p_Arguments);
    Choice choice;
    choice.Options.SettingsFile =
        Settings.empty() ? HostOptions::DefaultSettingsFile() : Absolute(Settings);
    QString const given = QStringLiteral("command line");
    if (!Server.empty())
        choice.Given[QStringLiteral("content-url")] = {Text(Server), given};
    if (!LogFile.empty())
        choice.Given[QStringLiteral("log-file")] = {Absolute(LogFile), given};
    return choice;
}

QString WindowParser::ModuleFolder() const
{
    return Modules.empty() ? QFileInfo(HostOptions::DefaultModuleFile()).absolutePath()
                           : Absolute(Modules);
}

std::string WindowParser::Answer(CLI::Success const& p_Help) const
{
    std::ostringstream answer;
    Program.exit(p_Help, answer);
    return answer.str();
}

} // namespace Varnholt::Host
