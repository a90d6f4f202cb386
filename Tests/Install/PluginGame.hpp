#pragma once

#include "Tests/Support/LoadedPlugin.hpp"
#include "Tests/Support/LogCapture.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/ScriptedServer.hpp"
#include "Tests/Support/TestHost.hpp"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

namespace Varnholt::TestSupport {

/// The built plug-in in a host, with a content server and a folder to install into.
class PluginGame {
public:
    PluginGame();
    ~PluginGame();
    PluginGame(PluginGame const&) = delete;
    PluginGame& operator=(PluginGame const&) = delete;

    Launcher::Application& App() { return *Plugin->App(); }
    TestHost& Host() { return *CurrentHost; }
    /// The progress record's nested record.
    auto& Progress() { return App().UISetting.Download; }

    /// Runs until the module has nothing left to do.
    [[nodiscard]] bool Finish() { return CurrentHost->RunUntilIdle(); }
    /// Runs the start-up chain to its end, and the run that it begins.
    [[nodiscard]] bool Init();
    /// Installs into the folder and runs to the end.
    [[nodiscard]] bool Install(bool p_Flag = false);
    [[nodiscard]] bool Repair();
    /// Ends the launcher and starts it again: a new module, the same settings.
    void Restart();

    QString Path(QString const& p_File) const { return Folder + p_File; }
    bool Has(QString const& p_File) const;
    QByteArray Read(QString const& p_File) const;
    void Put(QString const& p_File, QByteArray const& p_Bytes) const;
    /// Names of the build's files of a language that are missing or differ on the disk.
    QStringList Wrong(QString const& p_Locale = QStringLiteral("enUS")) const;
    /// Names that end so, below the folder.
    QStringList FilesEndingWith(QString const& p_End) const;
    /// The build's files that were asked for, each as often as it was, in alphabetical order.
    QStringList Requested() const;
    /// Begins to count requests anew.
    void ForgetRequests() { Forgotten = Server.Requests().size(); }

    LogCapture Log;
    QTemporaryDir Temporary;
    QString Folder; ///< ends in "/"
    ScriptedServer Server;
    SampleContent Content;

private:
    void Load();

    std::unique_ptr<LoadedPlugin> Plugin;
    std::unique_ptr<TestHost> CurrentHost;
    std::size_t Forgotten = 0;
};

} // namespace Varnholt::TestSupport
