#include "Publisher/Cli/Commands.hpp"

#include "Publisher/Cli/ConsoleText.hpp"
#include "Publisher/Serving/StaticServer.hpp"

#include <CLI/CLI.hpp>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <future>

namespace Varnholt::Publisher {

namespace {

/// How long answers and idle connections may keep the program once it is to end.
constexpr std::chrono::milliseconds c_Grace{500};
constexpr std::chrono::milliseconds c_StopEvery{20};

sigset_t EndingSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    return signals;
}

/// \return false when the server is still at work after the grace period
bool StopInTime(StaticServer& p_Server, std::future<void> const& p_Running)
{
    auto const end = std::chrono::steady_clock::now() + c_Grace;
    do {
        // Again and again: the server may not even have started to run.
        p_Server.Stop();
        if (p_Running.wait_for(c_StopEvery) == std::future_status::ready)
            return true;
    } while (std::chrono::steady_clock::now() < end);
    return false;
}

class ServeCommand : public Command {
public:
    explicit ServeCommand(CLI::App& p_Program);

    int Run() const override;

private:
    StaticServer::RequestLog Log() const;

    std::string Root;
    std::string Address = "127.0.0.1";
    int Port = 8080;
    bool Quiet = false;
};

ServeCommand::ServeCommand(CLI::App& p_Program)
    : Command(p_Program, "serve", "Serve a published tree for trials",
              "Example:\n"
              "  varnholt-publish serve --root /srv/www --port 8080\n"
              "\n"
              "Ends on SIGINT (Ctrl+C) and SIGTERM. Requests are logged on standard error:\n"
              "method, path, range, status.\n")
{
    Words.add_option("--root", Root, "Folder of the published tree")->required();
    Words.add_option("--address", Address, "Address to listen on")->capture_default_str();
    Words.add_option("--port", Port, "Port to listen on; 0 chooses a free one")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    Words.add_flag("--quiet", Quiet, "Do not log requests");
    AddJson("One JSON object per line, requests too");
}

StaticServer::RequestLog ServeCommand::Log() const
{
    if (Quiet)
        return {};
    if (!WantsJson())
        return ConsoleText::PrintErrorLine;
    return [](QString const& p_Line) {
        ConsoleText::PrintJson({{QStringLiteral("type"), QStringLiteral("request")},
                                {QStringLiteral("text"), p_Line}});
    };
}

int ServeCommand::Run() const
{
    // Before any thread starts, so that all of them leave these signals to sigwait.
    sigset_t const signals = EndingSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    QString const root = QString::fromStdString(Root);
    StaticServer server(root, Log());
    QString const url = server.Listen(QString::fromStdString(Address), Port);
    std::future<void> const running = std::async(std::launch::async, [&server] { server.Run(); });
    Tell(QStringLiteral("Serving %1 at %2").arg(root, url),
         {{QStringLiteral("type"), QStringLiteral("serving")},
          {QStringLiteral("root"), root},
          {QStringLiteral("url"), url}});

    int signal = 0;
    sigwait(&signals, &signal);
    // An idle connection would hold the program for seconds, a client that has stopped reading for
    // a minute; there is nothing to save.
    if (!StopInTime(server, running))
        std::_Exit(EXIT_SUCCESS);
    return 0;
}

} // namespace

std::unique_ptr<Command> MakeServeCommand(CLI::App& p_Program)
{
    return std::make_unique<ServeCommand>(p_Program);
}

} // namespace Varnholt::Publisher
