#include "Publisher/Rules/FlagNames.hpp"

#include "Launcher/Application/ApplicationManifest.hpp"

#include <array>

namespace Varnholt::Publisher::FlagNames {

namespace {

using Entry = Launcher::ApplicationManifestFileEntry;

struct NamedFlag {
    char const* Name;
    qint32 Mac;
    qint32 Windows;
};

constexpr std::array<NamedFlag, 6> c_Flags{{
    {"read-only", Entry::ReadOnly, Entry::ReadOnly},
    {"executable", Entry::Executable, Entry::Executable},
    {"game-executable", Entry::MacGameExecutable, Entry::WindowsGameExecutable},
    {"first-build-only", Entry::FirstBuildOnly, Entry::FirstBuildOnly},
    {"default-server-only", Entry::DefaultServerOnly, Entry::DefaultServerOnly},
    {"keep-if-present", Entry::KeepIfPresent, Entry::KeepIfPresent},
}};

} // namespace

std::optional<qint32> Flag(QString const& p_Name, ContentPlatform p_Platform)
{
    for (NamedFlag const& flag : c_Flags) {
        if (p_Name == QLatin1String(flag.Name))
            return p_Platform == ContentPlatform::Mac ? flag.Mac : flag.Windows;
    }
    return std::nullopt;
}

QStringList NamesOf(qint32 p_Flags, ContentPlatform p_Platform)
{
    QStringList names;
    for (NamedFlag const& flag : c_Flags) {
        if ((p_Flags & (p_Platform == ContentPlatform::Mac ? flag.Mac : flag.Windows)) != 0)
            names += QString::fromLatin1(flag.Name);
    }
    return names;
}

qint32 GameExecutable(ContentPlatform p_Platform)
{
    return *Flag(QStringLiteral("game-executable"), p_Platform);
}

QStringList All()
{
    QStringList names;
    for (NamedFlag const& flag : c_Flags)
        names += QString::fromLatin1(flag.Name);
    return names;
}

} // namespace Varnholt::Publisher::FlagNames
