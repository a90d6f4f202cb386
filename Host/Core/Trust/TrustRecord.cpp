#include "Host/Core/Trust/TrustRecord.hpp"

#include <QStringList>

#include <utility>

namespace Varnholt::Host {

namespace {

using Role = TrustJudge::Role;

QString const c_Keys = QStringLiteral("keys");
QString const c_Kept = QStringLiteral("kept");

} // namespace

TrustRecord::TrustRecord(HostSettings& p_Settings, QString p_AppId, QString const& p_Key,
                         bool p_UseDevChannel)
    : Settings(p_Settings)
    , AppId(std::move(p_AppId))
    , Channel(p_UseDevChannel ? QStringLiteral("dev") : QStringLiteral("live"))
    , Key(Signing::PublicKey::FromText(p_Key.toUtf8()))
{
}

QString TrustRecord::Place(QString const& p_Name) const
{
    return QStringLiteral("host/%1/trust/%2/%3").arg(AppId, Key->KeyId(), p_Name);
}

QString TrustRecord::ChannelPlace(QString const& p_Name) const
{
    return Place(Channel + QLatin1Char('/') + p_Name);
}

QString TrustRecord::VerifiedPlace() const
{
    return QStringLiteral("host/%1/verified").arg(AppId);
}

std::shared_ptr<TrustJudge> TrustRecord::NewJudge() const
{
    if (!IsOn())
        return nullptr;
    TrustJudge::Knowledge known;
    known.Game = AppId;
    known.Channel = Channel;
    known.Keys += *Key;
    for (QString const& text : Settings.Value(Place(c_Keys)).toStringList())
        if (auto const key = Signing::PublicKey::FromText(text.toLatin1()))
            known.Keys += *key;
    for (Role const role : {Role::Version, Role::Hosts, Role::RealmList})
        known.Seen[role] =
            Settings.Value(ChannelPlace(Signing::TrustedComment::NameOf(role))).toULongLong();
    known.Kept = Settings.Value(ChannelPlace(c_Kept)).toULongLong();
    return std::make_shared<TrustJudge>(known);
}

void TrustRecord::Remember(TrustJudge const& p_Judge)
{
    TrustJudge::Knowledge const known = p_Judge.Learned();
    QStringList keys;
    for (Signing::PublicKey const& key : known.Keys.mid(1))
        keys += QString::fromLatin1(key.ToText());
    if (!keys.isEmpty())
        Settings.SetValue(Place(c_Keys), keys);
    for (auto row = known.Seen.constBegin(); row != known.Seen.constEnd(); ++row)
        if (row.value() > 0)
            Settings.SetValue(ChannelPlace(Signing::TrustedComment::NameOf(row.key())),
                              QString::number(row.value()));
}

void TrustRecord::RememberCopies(TrustJudge const& p_Judge)
{
    Settings.SetValue(ChannelPlace(c_Kept),
                      QString::number(p_Judge.Learned().Seen.value(Role::Version)));
}

bool TrustRecord::IsGameVerified() const
{
    return IsOn() && Settings.Value(VerifiedPlace()).toString() == Key->KeyId();
}

void TrustRecord::MarkGame()
{
    if (IsOn())
        Settings.SetValue(VerifiedPlace(), Key->KeyId());
}

void TrustRecord::ForgetGame()
{
    Settings.Remove(VerifiedPlace());
}

QString TrustRecord::WhyNoKey(QString const& p_Text)
{
    return Signing::PublicKey::FromText(p_Text.toUtf8())
               ? QString()
               : TrustJudge::tr("\"%1\" is no public key").arg(p_Text);
}

} // namespace Varnholt::Host
