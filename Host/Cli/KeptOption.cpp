#include "Host/Cli/KeptOption.hpp"

#include "Host/Cli/OptionText.hpp"

#include <QCoreApplication>

#include <iterator>

namespace Varnholt::Host {

namespace {

QString AsItIs(QString const& p_Text)
{
    return p_Text;
}

int Number(QString const& p_Text)
{
    return p_Text.toInt();
}

/// What a text means in which `Fault` has found none.
template <auto Meaning>
auto Valid(QString const& p_Text)
{
    return Meaning(p_Text).value();
}

template <auto Place, auto Meaning>
void Into(Choice& p_Choice, QString const& p_Text)
{
    p_Choice.Options.*Place = Meaning(p_Text);
}

Color ColorsNamed(QString const& p_Name)
{
    if (p_Name == QLatin1String("always"))
        return Color::Always;
    return p_Name == QLatin1String("never") ? Color::Never : Color::Auto;
}

constexpr KeptOption c_Table[] = {
    {"module", "FILE", nullptr, "", false, "Module to load (default: the one beside this program)",
     nullptr, Into<&HostOptions::ModuleFile, OptionText::Absolute>},
    {"content-url", "URL", nullptr, "", true,
     "Content server instead of the module's own, http://HOST[:PORT]/ or https",
     OptionText::WhyNotServer, Into<&HostOptions::ContentUrl, AsItIs>},
    {"content-user", "NAME", nullptr, "", true,
     "User at the content server; \"config content-password\" keeps the password, unless "
     "VARNHOLT_CONTENT_PASSWORD holds it",
     OptionText::WhyNotUser, Into<&HostOptions::ContentUser, AsItIs>},
    {"netrc-file", "FILE", nullptr, "~/.netrc", true,
     "Users and passwords at servers that it names (default: ~/.netrc)", OptionText::WhyNotReadable,
     Into<&HostOptions::NetrcFile, OptionText::Absolute>},
    {"limit-rate", "RATE", nullptr, "0", true,
     "Bytes per second that content may arrive with, such as 500k, 2M or 1.5MiB (default: 0, no "
     "limit); \"config limit-rate\" changes it for a download under way",
     OptionText::WhyNotRate, Into<&HostOptions::BytesPerSecond, Valid<OptionText::Rate>>},
    {"connections", "N", nullptr, "4", true,
     "Connections that bring content at the same time, 1 to 64 (default: 4)",
     OptionText::WhyNotConnections, Into<&HostOptions::Connections, Number>},
    {"retry-for", "TIME", nullptr, "10m", true,
     "How long servers are asked again while no byte arrives, such as 90s, 10m or 2h; 0: for ever "
     "(default: 10m)",
     OptionText::WhyNotTime,
     Into<&HostOptions::RetryForMilliseconds, Valid<OptionText::Milliseconds>>},
    {"connect-timeout", "TIME", nullptr, "15s", true,
     "How long it may take to connect to a server (default: 15s)", OptionText::WhyNotTimeout,
     Into<&HostOptions::ConnectMilliseconds, Valid<OptionText::Milliseconds>>},
    {"ca-file", "FILE", nullptr, "", true,
     "Certificates of the authorities to trust, in PEM form (default: the system's)",
     OptionText::WhyNotCertificates, Into<&HostOptions::CaFile, OptionText::Absolute>},
    {"proxy", "URL", nullptr, "", true,
     "Proxy to all servers, [SCHEME://]HOST[:PORT] (default: what the environment names)",
     OptionText::WhyNotProxy, Into<&HostOptions::Proxy, AsItIs>},
    {"https-mirrors", nullptr, "true,false", "false", true, "Ask every mirror by https",
     OptionText::WhyNotYesOrNo, Into<&HostOptions::HttpsMirrors, Valid<OptionText::YesOrNo>>},
    {"offline", nullptr, "true,false", "false", true,
     "Ask no server, go on from what is kept of the latest run", OptionText::WhyNotYesOrNo,
     Into<&HostOptions::Offline, Valid<OptionText::YesOrNo>>},
    {"dev-channel", nullptr, "true,false", "false", false,
     "Use the build of the development channel", OptionText::WhyNotYesOrNo,
     Into<&HostOptions::UseDevChannel, Valid<OptionText::YesOrNo>>},
    {"trust-key", "KEY", nullptr, "", false,
     "Public key of who must have signed the game's documents, or a file that holds it (default: "
     "the one that the module names, if any)",
     OptionText::WhyNotTrustKey, Into<&HostOptions::TrustKey, OptionText::TrustKey>},
    {"wrapper", "COMMAND", nullptr, "", false,
     "Program that the game is started with, and its arguments, quoted as for a shell: \"wine\"",
     OptionText::WhyNotCommand, Into<&HostOptions::Wrapper, Valid<OptionText::Words>>},
    {"log-file", "FILE", nullptr, "", false, "Append the module's log to a file", nullptr,
     [](Choice& p_Choice, QString const& p_Text) {
         p_Choice.LogFile = OptionText::Absolute(p_Text);
     }},
    {"color", "WHEN", "auto,always,never", "auto", false,
     "Colours: auto, always or never (default: auto)", nullptr,
     [](Choice& p_Choice, QString const& p_Text) { p_Choice.Colors = ColorsNamed(p_Text); }},
};

} // namespace

QStringList KeptOption::Choices() const
{
    return QString::fromLatin1(Values).split(QLatin1Char(','), Qt::SkipEmptyParts);
}

QString KeptOption::Fault(QString const& p_Text) const
{
    QStringList const choices = IsFlag() ? QStringList() : Choices();
    if (!choices.isEmpty() && !choices.contains(p_Text))
        return QCoreApplication::translate("Varnholt::Host::OptionText", "\"%1\" is none of: %2")
            .arg(p_Text, choices.join(QStringLiteral(", ")));
    return WhyNot == nullptr ? QString() : WhyNot(p_Text);
}

QString KeptOption::Default() const
{
    if (QLatin1String(Name) == QLatin1String("module"))
        return HostOptions::DefaultModuleFile();
    if (QLatin1String(Name) == QLatin1String("content-url"))
        return HostOptions().ContentServer();
    return QString::fromLatin1(Otherwise);
}

std::vector<KeptOption> KeptOption::All()
{
    return {std::begin(c_Table), std::end(c_Table)};
}

} // namespace Varnholt::Host
