#include "Publisher/Publication/OptionChecks.hpp"

#include "Publisher/Failure.hpp"

#include <QRegularExpression>

#include <algorithm>

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

void CheckHost(QString const& p_Option, QString const& p_Host)
{
    static QRegularExpression const c_Host(QRegularExpression::anchoredPattern(
        QStringLiteral("([A-Za-z0-9][A-Za-z0-9._-]*|\\[[0-9A-Fa-f:.]+\\])(:([0-9]{1,5}))?")));
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
    QRegularExpressionMatch const match = c_Host.match(p_Host);
    if (!match.hasMatch() || match.captured(3).toInt() > 65535)
        Fail(p_Option, p_Host, QStringLiteral("is not a host name with or without a port"));
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
        CheckRealmList(QStringLiteral("--realmlist"), *p_Options.RealmListAddress);
}

void CheckHosts(QString const& p_Option, QStringList const& p_Hosts)
{
    for (QString const& host : p_Hosts)
        CheckHost(p_Option, host);
}

void CheckRealmList(QString const& p_Option, QString const& p_Address)
{
    if (p_Address.isEmpty())
        Fail(p_Option, p_Address, QStringLiteral("the address is empty"));
    if (p_Address.contains(QLatin1Char('"')))
        Fail(p_Option, p_Address, QStringLiteral("the address must not hold a quote"));
    bool const breaksLine = std::any_of(p_Address.begin(), p_Address.end(), [](QChar p_Character) {
        return p_Character.category() == QChar::Other_Control ||
               p_Character == QChar::LineSeparator || p_Character == QChar::ParagraphSeparator;
    });
    if (breaksLine) {
        throw Failure(p_Option + QStringLiteral(": the address must not hold a line break or "
                                                "another control character"),
                      Failure::c_Usage);
    }
}

} // namespace Varnholt::Publisher::OptionChecks
