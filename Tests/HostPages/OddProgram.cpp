#include "Tests/HostPages/OddProgram.hpp"

namespace Varnholt::TestSupport {

using namespace Host::Pages;

QString OddText()
{
    return QStringLiteral(".dots 'quotes' \"double\" `touch odd` $(touch odd) $HOME \\n \\fB [x] "
                          "a:b ~ ^ %1 * -- ; #");
}

ProgramModel OddProgram()
{
    Value const choice{
        QStringLiteral("W:X"), Value::Type::Choice, {QStringLiteral("it's"), QStringLiteral("$x")}};
    ProgramModel model;
    model.Name = QStringLiteral("odd-host");
    model.Version = QStringLiteral("1.0");
    model.Help = OddText();
    model.Options += Option{{QStringLiteral("-p"), QStringLiteral("--plain")}, OddText(), {}, {}};
    model.Options += Option{{QStringLiteral("--choice")}, OddText(), QStringLiteral("ODD"), choice};
    Command go{QStringLiteral("go"), OddText(), OddText(), {}, {}};
    go.Options += Option{{QStringLiteral("--far")}, OddText(), {}, {}};
    go.Arguments += Argument{QStringLiteral("a:b"), OddText(), true, choice, {}};
    model.Commands += go;
    return model;
}

} // namespace Varnholt::TestSupport
