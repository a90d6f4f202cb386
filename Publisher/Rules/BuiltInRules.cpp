#include "Publisher/Rules/BuiltInRules.hpp"

#include "Files/HostLockName.hpp"
#include "Launcher/Application/ApplicationManifest.hpp"

#include <array>

namespace Varnholt::Publisher {

namespace {

using Entry = Launcher::ApplicationManifestFileEntry;

/// Of players: settings, with the login screen that holds a password, and what the game writes.
/// Of systems: what file managers write. Of clients: files that have not arrived whole, and
/// the host's lock.
constexpr std::array<char const*, 13> c_Excluded{
    "WTF/**",
    "Cache/**",
    "Logs/**",
    "Errors/**",
    "Screenshots/**",
    "Interface/GlueXMl/AccountLogin.xml",
    "Interface/GlueXMl/AccountLogin.lua",
    "**/.DS_Store",
    "**/._*",
    "**/Thumbs.db",
    "**/desktop.ini",
    "**/*.part",
    c_HostLockName,
};

Rule RuleFor(QString const& p_Pattern)
{
    return {GlobPattern(p_Pattern), {}, {}, {}, {}, p_Pattern, 0};
}

Rule Flagged(QString const& p_Pattern, qint32 p_Flags)
{
    Rule rule = RuleFor(p_Pattern);
    rule.Flags = p_Flags;
    return rule;
}

} // namespace

RuleSet BuiltInRules(ContentPlatform p_Platform, std::map<QString, QString> const& p_Locales)
{
    RuleSet set{{}, p_Locales};
    if (p_Platform == ContentPlatform::Windows) {
        set.Rules.push_back(Flagged(QStringLiteral("Wow-64.exe"), Entry::WindowsGameExecutable));
    } else {
        set.Rules.push_back(
            Flagged(QStringLiteral("**/*.app/Contents/MacOS/*"), Entry::Executable));
        set.Rules.push_back(
            Flagged(QStringLiteral("World of Warcraft.app/Contents/MacOS/World of Warcraft"),
                    Entry::Executable | Entry::MacGameExecutable));
    }
    for (auto const& locale : p_Locales) {
        Rule rule = RuleFor(QStringLiteral("Data/%1/**").arg(locale.first));
        rule.Locale = locale.first;
        set.Rules.push_back(rule);
    }
    return set;
}

std::vector<Rule> const& BuiltInExcludes()
{
    static std::vector<Rule> const c_Rules = [] {
        std::vector<Rule> rules;
        for (char const* const pattern : c_Excluded) {
            rules.push_back(RuleFor(QLatin1String(pattern)));
            rules.back().Excluded = true;
        }
        return rules;
    }();
    return c_Rules;
}

} // namespace Varnholt::Publisher
