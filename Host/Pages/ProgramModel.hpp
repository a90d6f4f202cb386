#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

namespace Varnholt::Host::Pages {

/// What may stand for an option or an argument.
struct Value {
    enum class Type { Text, File, Folder, Choice };

    QString Name; ///< as the help shows it: "FILE"; empty: none, it is a flag
    Type Kind = Type::Text;
    QStringList Choices;
};

struct Option {
    QStringList Names; ///< with their dashes, the short ones first
    QString Help;
    QString Variable; ///< that of the environment; may be empty
    Value Takes;
};

/// What stands without a name behind a command.
struct Argument {
    QString Name;
    QString Help;
    bool IsRequired = false;
    Value Takes;
    /// What it can be when the argument before it is this word, for those where that matters.
    QVector<QPair<QString, Value>> After;
};

struct Command {
    QString Name;
    QString Help;
    QString Example;
    QVector<Option> Options; ///< its own; those of the program stand behind it too
    QVector<Argument> Arguments;
};

/// The command line of a program, as the pages about it need it.
struct ProgramModel {
    QString Name;
    QString Version;
    QString Help;
    QVector<Option> Options;
    QVector<Command> Commands;
};

} // namespace Varnholt::Host::Pages
