// A line for benchmarks: passes TCP connections on, with a delay and a limit of the rate.

#include "Benchmarks/LineProxy/Line.hpp"

#include <CLI/CLI.hpp>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <unistd.h>

namespace {

using namespace Varnholt::LineProxy;

std::array<int, 2> g_StopPipe;

void Stop(int)
{
    [[maybe_unused]] ssize_t const written = write(g_StopPipe[1], "", 1);
}

bool WatchSignals()
{
    if (pipe(g_StopPipe.data()) != 0)
        return false;
    std::signal(SIGINT, Stop);
    std::signal(SIGTERM, Stop);
    std::signal(SIGPIPE, SIG_IGN); // who has gone is found by what write() says
    return true;
}

void Run(LineOptions const& p_Options)
{
    if (!WatchSignals())
        throw std::system_error(errno, std::generic_category(), "no pipe");
    Line line(p_Options);
    std::cout << line.Port() << std::endl;
    line.Run(g_StopPipe[0]);
    LineFigures const figures = line.Figures();
    std::cout << figures.Connections << ' ' << figures.Bytes << ' '
              << std::chrono::duration<double>(figures.Time).count() << std::endl;
}

int RunProgram(int p_Count, char* p_Arguments[])
{
    LineOptions options;
    std::string server;
    unsigned delay = 0;

    CLI::App program("A line between clients on this machine and a server: slow, or far away.");
    program.footer(
        "Prints its port; when SIGINT or SIGTERM ends it: connections, bytes of answers,\n"
        "seconds from the first byte to the last one.");
    program.add_option("--listen", options.Port, "Port on 127.0.0.1; 0 chooses a free one")
        ->capture_default_str();
    program.add_option("--to", server, "HOST:PORT of the server")->required();
    program.add_option("--delay", delay, "Milliseconds one way; a round trip takes two of them")
        ->check(CLI::Range(0, 60'000));
    program.add_option("--rate", options.BytesPerSecond,
                       "Bytes a second of all answers together; 0: without limit");
    CLI11_PARSE(program, p_Count, p_Arguments);

    std::size_t const colon = server.rfind(':');
    if (colon == std::string::npos)
        throw std::invalid_argument("--to wants HOST:PORT");
    options.ServerHost = server.substr(0, colon);
    options.ServerPort = server.substr(colon + 1);
    options.Delay = std::chrono::milliseconds(delay);
    Run(options);
    return EXIT_SUCCESS;
}

} // namespace

int main(int p_Count, char* p_Arguments[])
{
    try {
        return RunProgram(p_Count, p_Arguments);
    } catch (std::exception const& error) {
        std::cerr << "varnholt-line: " << error.what() << '\n';
    }
    return EXIT_FAILURE;
}
