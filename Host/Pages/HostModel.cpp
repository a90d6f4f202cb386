#include "Host/Pages/HostModel.hpp"

#include "Host/Cli/CommandParser.hpp"
#include "Host/Cli/ConfigCommand.hpp"

#include <algorithm>

namespace Varnholt::Host::Pages {

namespace {

QString Text(std::string const& p_Text)
{
    return QString::fromStdString(p_Text);
}

/// The parser shows values as "FILE" and "WHEN:{auto,always,never}".
Value ValueOf(CLI::Option const& p_Option)
{
    if (p_Option.get_items_expected_max() == 0)
        return {};
    QString const shown = Text(p_Option.get_type_name());
    Value value;
    value.Name = shown.section(QLatin1Char(':'), 0, 0);
    QString const set = shown.section(QLatin1Char('{'), 1).section(QLatin1Char('}'), 0, 0);
    if (!set.isEmpty()) {
        value.Kind = Value::Type::Choice;
        value.Choices = set.split(QLatin1Char(','));
    } else if (value.Name == QLatin1String("FILE")) {
        value.Kind = Value::Type::File;
    } else if (value.Name == QLatin1String("DIR")) {
        value.Kind = Value::Type::Folder;
    }
    return value;
}

Option OptionOf(CLI::Option const& p_Option)
{
    Option option;
    for (std::string const& name : p_Option.get_snames())
        option.Names += QLatin1Char('-') + Text(name);
    for (std::string const& name : p_Option.get_lnames())
        option.Names += QStringLiteral("--") + Text(name);
    option.Help = Text(p_Option.get_description());
    option.Variable = Text(p_Option.get_envname());
    option.Takes = ValueOf(p_Option);
    return option;
}

Argument ArgumentOf(CLI::Option const& p_Option)
{
    return {Text(p_Option.get_name(true)),
            Text(p_Option.get_description()),
            p_Option.get_required(),
            ValueOf(p_Option),
            {}};
}

Command CommandOf(CLI::App const& p_App)
{
    Command command;
    command.Name = Text(p_App.get_name());
    command.Help = Text(p_App.get_description());
    for (CLI::Option const* const option : p_App.get_options())
        if (option->get_positional())
            command.Arguments += ArgumentOf(*option);
        else if (option != p_App.get_help_ptr()) // the program's own stands behind it too
            command.Options += OptionOf(*option);
    return command;
}

Command& CommandNamed(ProgramModel& p_Model, char const* p_Name)
{
    return *std::find_if(
        p_Model.Commands.begin(), p_Model.Commands.end(),
        [p_Name](Command const& p_One) { return p_One.Name == QLatin1String(p_Name); });
}

void AddCommandsToHelp(ProgramModel& p_Model)
{
    Value& topic = CommandNamed(p_Model, "help").Arguments[0].Takes;
    topic.Kind = Value::Type::Choice;
    for (Command const& command : p_Model.Commands)
        topic.Choices += command.Name;
}

/// A key is the name of an option, so its values are those of that option.
void AddValuesOfKeys(ProgramModel& p_Model)
{
    Command& config = CommandNamed(p_Model, "config");
    Argument& key = config.Arguments[0];
    key.Takes.Kind = Value::Type::Choice;
    key.Takes.Choices = ConfigCommand::Keys();
    for (Option const& option : p_Model.Options) {
        QString const name = option.Names.last().mid(2);
        if (!key.Takes.Choices.contains(name))
            continue;
        Value values = option.Takes;
        if (values.Name.isEmpty())
            values = {
                QString(), Value::Type::Choice, {QStringLiteral("true"), QStringLiteral("false")}};
        config.Arguments[1].After.append({name, values});
    }
}

} // namespace

ProgramModel HostModel()
{
    CommandParser const parser;
    CLI::App const& program = parser.Model();
    ProgramModel model;
    model.Name = Text(program.get_name());
    model.Version = Text(program.version());
    model.Help = Text(program.get_description());
    for (CLI::Option const* const option : program.get_options())
        if (!option->get_group().empty()) // the help shows no other
            model.Options += OptionOf(*option);
    for (CLI::App const* const app :
         program.get_subcommands([](CLI::App const*) { return true; })) {
        model.Commands += CommandOf(*app);
        model.Commands.last().Example = Text(parser.Example(app->get_name()));
    }
    AddValuesOfKeys(model);
    AddCommandsToHelp(model);
    return model;
}

} // namespace Varnholt::Host::Pages
