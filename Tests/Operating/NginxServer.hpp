#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

#include <utility>
#include <vector>

namespace Varnholt::TestSupport {

/// A real nginx with one of the configurations in docs/nginx, as long as it lives.
class NginxServer {
public:
    using Replacements = std::vector<std::pair<QString, QString>>;

    /// Starts it on a free port; ends the whole program when it does not start.
    /// \param p_File name of the configuration
    /// \param p_Replacements what stands for an example in it; each must be found
    NginxServer(QString const& p_File, Replacements const& p_Replacements);
    ~NginxServer();
    NginxServer(NginxServer const&) = delete;
    NginxServer& operator=(NginxServer const&) = delete;

    quint16 Port() const { return ListenPort; }
    QString Host() const { return QStringLiteral("127.0.0.1:%1").arg(ListenPort); }
    QString BaseUrl() const { return QStringLiteral("http://%1/").arg(Host()); }
    void Stop();

private:
    void WriteConfiguration(QString p_Text, Replacements const& p_Replacements) const;
    bool Start();

    QTemporaryDir Folder;
    quint16 ListenPort = 0;
    QProcess Process;
};

} // namespace Varnholt::TestSupport
