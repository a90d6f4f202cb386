#include "Publisher/Publication/OptionChecks.hpp"

#include "Publisher/Failure.hpp"

#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <array>

#include <arpa/inet.h>

namespace Varnholt::Publisher::OptionChecks {

namespace {

[[noreturn]] void Fail(QString const& p_Option, QString const& p_Value, QString const& p_Cause)
{
    throw Failure(QStringLiteral("%1 \"%2\": %3").arg(p_Option, p_Value, p_Cause),
                  Failure::c_Usage);
}

void CheckFolder(QString const& p_Option, QString const& p_Value)
{
    if (p_Value.isEmpty())
        Fail(p_Option, p_Value, QStringLiteral("the folder's name is empty"));
}

/// A part of an address is inserted as it is by clients, so it must need no escaping.
void CheckAddressPart(QString const& p_Option, QString const& p_Value)
{
    static QRegularExpression const c_Part(
        QRegularExpression::anchoredPattern(QStringLiteral("[A-Za-z0-9_-][A-Za-z0-9._-]*")));
    if (!c_Part.match(p_Value).hasMatch()) {
        Fail(p_Option, p_Value,
             QStringLiteral("use letters, digits, \".\", \"_\" and \"-\", and no \".\" in front"));
    }
}

bool IsAddress(int p_Family, QString const& p_Text)
{
    std::array<unsigned char, sizeof(in6_addr)> address{};
    return ::inet_pton(p_Family, p_Text.toLatin1().constData(), address.data()) == 1;
}

bool IsName(QString const& p_Text)
{
    static QRegularExpression const c_Name(QRegularExpression::anchoredPattern(
        QStringLiteral("(?=.{1,253}$)(%1(\\.%1)*)")
            .arg(QStringLiteral("[A-Za-z0-9_]([A-Za-z0-9_-]{0,61}[A-Za-z0-9_])?"))));
    static QRegularExpression const c_Numbers(
        QRegularExpression::anchoredPattern(QStringLiteral("[0-9.]+")));
    return c_Numbers.match(p_Text).hasMatch() ? IsAddress(AF_INET, p_Text)
                                              : c_Name.match(p_Text).hasMatch();
}

bool IsHost(QString const& p_Host)
{
    static QRegularExpression const c_Parts(QRegularExpression::anchoredPattern(
        QStringLiteral("(?:\\[([^\\]]+)\\]|([^:\\[\\]]+))(?::([1-9][0-9]{0,4}))?")));
    QRegularExpressionMatch const parts = c_Parts.match(p_Host);
    if (!parts.hasMatch() || parts.captured(3).toInt() > 65535)
        return false;
    QString const name = parts.captured(2);
    return name.isEmpty() ? IsAddress(AF_INET6, parts.captured(1)) : IsName(name);
}

/// The same for every spelling of a server.
QString KeyOf(QString const& p_Host)
{
    QString const host = p_Host.toLower();
    return host.endsWith(QStringLiteral(":80")) ? host.chopped(3) : host;
}

} // namespace

void Check(PublishOptions const& p_Options)
{
    CheckFolder(QStringLiteral("--source"), p_Options.Source);
    CheckFolder(QStringLiteral("--output"), p_Options.Output);
    CheckAddressPart(QStringLiteral("--build"), p_Options.Build.Id);
    CheckAddressPart(QStringLiteral("--app-id"), p_Options.AppId);
    if (p_Options.Hosts)
        CheckHosts(QStringLiteral("--hosts"), *p_Options.Hosts);
    if (p_Options.RealmListAddress)
        CheckHost(QStringLiteral("--realmlist"), *p_Options.RealmListAddress);
}

void CheckHosts(QString const& p_Option, QStringList const& p_Hosts)
{
    QSet<QString> known;
    for (QString const& host : p_Hosts) {
        CheckHost(p_Option, host);
        if (known.contains(KeyOf(host)))
            Fail(p_Option, host, QStringLiteral("is given twice"));
        known.insert(KeyOf(host));
    }
}

void CheckHost(QString const& p_Option, QString const& p_Host)
{
    if (p_Host.isEmpty())
        Fail(p_Option, p_Host, QStringLiteral("a host name is empty"));
    if (p_Host.contains(QStringLiteral("://")))
        Fail(p_Option, p_Host, QStringLiteral("give the host name without a scheme"));
    if (p_Host.contains(QLatin1Char('/')))
        Fail(p_Option, p_Host, QStringLiteral("a host name holds no slash"));
    bool const hasBlank = std::any_of(p_Host.begin(), p_Host.end(),
                                      [](QChar p_Character) { return p_Character.isSpace(); });
    if (hasBlank)
        Fail(p_Option, p_Host, QStringLiteral("a host name holds no blank"));
    if (!IsHost(p_Host))
        Fail(p_Option, p_Host, QStringLiteral("is not a host name with or without a port"));
}

} // namespace Varnholt::Publisher::OptionChecks
