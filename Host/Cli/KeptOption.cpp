#include "Host/Cli/KeptOption.hpp"

#include "Host/Cli/OptionText.hpp"

#include <QCoreApplication>

#include <iterator>

namespace Varnholt::Host {

namespace {

bool IsTrue(QString const& p_Text)
{
    return OptionText::YesOrNo(p_Text).value_or(false);
}

Color ColorsNamed(QString const& p_Name)
{
    if (p_Name == QLatin1String("always"))
        return Color::Always;
    return p_Name == QLatin1String("never") ? Color::Never : Color::Auto;
}

constexpr KeptOption c_Table[] = {
    {"module", "FILE", nullptr, "", false, "Module to load (default: the one beside this program)",
     nullptr,
     [](Choice& p_Choice, QString const& p_Text) {
         p_Choice.Options.ModuleFile = OptionText::Absolute(p_Text);
     }},
    {"content-url", "URL", nullptr, "", true,
     "Content server instead of the module's own, http://HOST[:PORT]/ or https",
     OptionText::WhyNotServer,
     [](Choice& p_Choice, QString const& p_Text) { p_Choice.Options.ContentUrl = p_Text; }},
    {"content-user", "NAME", nullptr, "", true,
     "User at the content server; \"config content-password\" keeps the password, unless "
     "VARNHOLT_CONTENT_PASSWORD holds it",
     OptionText::WhyNotUser,
     [](Choice& p_Choice, QString const& p_Text) { p_Choice.Options.ContentUser = p_Text; }},
    {"netrc-file", "FILE", nullptr, "~/.netrc", true,
     "Users and passwords at servers that it names (default: ~/.netrc)", OptionText::WhyNotReadable,
     [](Choice& p_Choice, QString const& p_Text) {
         p_Choice.Options.NetrcFile = OptionText::Absolute(p_Text);
     }},
    {"limit-rate", "RATE", nullptr, "0", true,
     "Bytes per second that content may arrive with, such as 500k, 2M or 1.5MiB (default: 0, no "
     "limit); \"config limit-rate\" changes it for a download under way",
     OptionText::WhyNotRate,
     [](Choice& p_Choice, QString const& p_Text) {
         p_Choice.Options.BytesPerSecond = OptionText::Rate(p_Text).value_or(0);
     }},
    {"connections", "N", nullptr, "4", true,
     "Connections that bring content at the same time, 1 to 64 (default: 4)",
     OptionText::WhyNotConnections,
     [](Choice& p_Choice, QString const& p_Text) {
         p_Choice.Options.Connections = p_Text.toInt();
     }},
    {"retry-for", "TIME", nullptr, "10m", true,
     "How long servers are asked again while no byte arrives, such as 90s, 10m or 2h; 0: for ever "
     "(default: 10m)",
     OptionText::WhyNotTime,
     [](Choice& p_Choice, QString const& p_Text) {
         p_Choice.Options.RetryForMilliseconds = OptionText::Milliseconds(p_Text).value_or(0);
     }},
    {"connect-timeout", "TIME", nullptr, "15s", true,
     "How long it may take to connect to a server (default: 15s)", OptionText::WhyNotTimeout,
     [](Choice& p_Choice, QString const& p_Text) {
         p_Choice.Options.ConnectMilliseconds = OptionText::Milliseconds(p_Text).value_or(0);
     }},
    {"ca-file", "FILE", nullptr, "", true,
     "Certificates of the authorities to trust, in PEM form (default: the system's)",
     OptionText::WhyNotCertificates,
     [](Choice& p_Choice, QString const& p_Text) {
         p_Choice.Options.CaFile = OptionText::Absolute(p_Text);
     }},
    {"proxy", "URL", nullptr, "", true,
     "Proxy to all servers, [SCHEME://]HOST[:PORT] (default: what the environment names)",
     OptionText::WhyNotProxy,
     [](Choice& p_Choice, QString const& p_Text) { p_Choice.Options.Proxy = p_Text; }},
    {"https-mirrors", nullptr, "true,false", "false", true, "Ask every mirror by https",
     OptionText::WhyNotYesOrNo,
     [](Choice& p_Choice, QString const& p_Text) {
         p_Choice.Options.HttpsMirrors = IsTrue(p_Text);
     }},
    {"offline", nullptr, "true,false", "false", true,
     "Ask no server, go on from what is kept of the latest run", OptionText::WhyNotYesOrNo,
     [](Choice& p_Choice, QString const& p_Text) { p_Choice.Options.Offline = IsTrue(p_Text); }},
    {"dev-channel", nullptr, "true,false", "false", false,
     "Use the build of the development channel", OptionText::WhyNotYesOrNo,
     [](Choice& p_Choice, QString const& p_Text) {
         p_Choice.Options.UseDevChannel = IsTrue(p_Text);
     }},
    {"trust-key", "KEY", nullptr, "", false,
     "Public key of who must have signed the game's documents, or a file that holds it (default: "
     "the one that the module names, if any)",
     OptionText::WhyNotTrustKey,
     [](Choice& p_Choice, QString const& p_Text) {
         p_Choice.Options.TrustKey = OptionText::TrustKey(p_Text);
     }},
    {"wrapper", "COMMAND", nullptr, "", false,
     "Program that the game is started with, and its arguments, quoted as for a shell: \"wine\"",
     OptionText::WhyNotCommand,
     [](Choice& p_Choice, QString const& p_Text) {
         p_Choice.Options.Wrapper = OptionText::Words(p_Text).value_or(QStringList());
     }},
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
