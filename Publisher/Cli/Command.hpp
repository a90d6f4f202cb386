#pragma once

#include <QJsonObject>
#include <QString>

#include <string>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace Varnholt::Publisher {

/// A command of varnholt-publish, and the options that most of them have.
class Command {
public:
    virtual ~Command() = default;
    Command(Command const&) = delete;
    Command& operator=(Command const&) = delete;

    bool IsChosen() const;
    /// Whether it was asked for one JSON object per line.
    bool WantsJson() const { return Json; }

    /// \return exit status
    /// \throws Failure
    virtual int Run() const = 0;

protected:
    /// Adds it to the program, which keeps references to this object.
    /// \param p_Footer stands below its options: examples above all
    Command(CLI::App& p_Program, char const* p_Name, char const* p_Description,
            char const* p_Footer);

    CLI::Option* AddOutput(char const* p_Description = "Folder of the published tree");
    void AddAppId();
    void AddJson(char const* p_Description = "One JSON object per line");

    /// Prints the line, or the object when it was asked for objects.
    void Tell(QString const& p_Line, QJsonObject const& p_Object) const;

    QString Output() const { return QString::fromStdString(Folder); }
    QString AppId() const { return QString::fromStdString(Application); }

    CLI::App& Words; ///< its part of the command line

private:
    std::string Folder;
    std::string Application = "pelmora_app";
    bool Json = false;
};

} // namespace Varnholt::Publisher
