// varnholt-manifest ours|qt FILE: prints the seconds that reading a manifest takes, by the module
// or as JSON alone.

#include "Launcher/Application/ApplicationManifest.hpp"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>

#include <cstdio>

namespace {

bool Read(QByteArray const& p_Data, bool p_IsOurs)
{
    if (!p_IsOurs)
        return QJsonDocument::fromJson(p_Data).isObject();
    bool success = false;
    Varnholt::Launcher::ParseApplicationManifest(p_Data, success, false);
    return success;
}

} // namespace

int main(int p_Count, char** p_Arguments)
{
    constexpr double c_NanosecondsPerSecond = 1e9;

    QFile file(QString::fromLocal8Bit(p_Count == 3 ? p_Arguments[2] : ""));
    if (!file.open(QIODevice::ReadOnly))
        return EXIT_FAILURE;
    QByteArray const data = file.readAll();
    bool const isOurs = qstrcmp(p_Arguments[1], "ours") == 0;
    if (!Read(data, isOurs)) // the first takes its memory from the system
        return EXIT_FAILURE;
    QElapsedTimer clock;
    clock.start();
    Read(data, isOurs);
    std::printf("%.6f\n", static_cast<double>(clock.nsecsElapsed()) / c_NanosecondsPerSecond);
}
