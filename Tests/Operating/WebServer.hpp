#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

#include <utility>
#include <vector>

namespace Varnholt::TestSupport {

/// A real web server with a configuration, one of those in docs above all, as long as it lives.
class WebServer {
public:
    using Replacements = std::vector<std::pair<QString, QString>>;

    virtual ~WebServer();
    WebServer(WebServer const&) = delete;
    WebServer& operator=(WebServer const&) = delete;

    quint16 Port() const { return ListenPort; }
    QString Host() const { return QStringLiteral("127.0.0.1:%1").arg(ListenPort); }
    QString BaseUrl() const { return QStringLiteral("http://%1/").arg(Host()); }
    void Stop();

protected:
    /// \param p_Program its executable
    /// \param p_File name of the configuration, below docs, or any file's whole name
    /// \param p_Replacements what stands for an example in it; each must be found
    WebServer(QString p_Program, QString p_File, Replacements p_Replacements);

    /// Starts it on a free port; ends the whole program when it does not start. To be called by the
    /// constructor of each server.
    void Start();
    QString Place(QString const& p_Name) const { return Folder.filePath(p_Name); }

private:
    /// The replacements that make it listen on `Port()`.
    virtual Replacements ListenReplacements() const = 0;
    /// Makes a configuration that can be run of the documented one.
    virtual QString Complete(QString const& p_Text) const = 0;
    /// \param p_Configuration the file that `Complete()` went to
    virtual QStringList Arguments(QString const& p_Configuration) const = 0;
    /// Whether the port is its own by now, not that of another program.
    virtual bool HasItsPort() const = 0;

    void WriteConfiguration() const;
    bool Run();

    QString const Program;
    QString const File;
    Replacements const Examples;
    QTemporaryDir Folder;
    quint16 ListenPort = 0;
    QProcess Process;
};

} // namespace Varnholt::TestSupport
