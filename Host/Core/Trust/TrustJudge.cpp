#include "Host/Core/Trust/TrustJudge.hpp"

#include "Host/Gateway/Clock.hpp"

#include <QMutexLocker>

#include <algorithm>
#include <utility>

namespace Varnholt::Host {

namespace {

using Gateway::FetchProblem;
using Type = FetchProblem::Type;

QString const c_KeyName = QStringLiteral("/trust-key");

FetchProblem Distrust(Type p_Kind, TrustJudge::Evidence const& p_Evidence, QString const& p_Cause)
{
    return {p_Kind, p_Evidence.Url, FetchProblem::Cause::Told, 0, p_Cause.toStdString()};
}

TrustJudge::Role RoleOf(QString const& p_Path)
{
    using Role = TrustJudge::Role;

    if (!p_Path.contains(QLatin1Char('/')))
        return Role::Hosts;
    if (p_Path.endsWith(QLatin1String("/info.json")))
        return Role::Manifest;
    if (p_Path.endsWith(QLatin1String("/realmlist.info")))
        return Role::RealmList;
    return p_Path.endsWith(c_KeyName) ? Role::Key : Role::Version;
}

TrustJudge::Role RoleOf(TrustJudge::Evidence const& p_Evidence)
{
    return RoleOf(QString::fromStdString(p_Evidence.Path));
}

QDateTime Now()
{
    using std::chrono::milliseconds;

    auto const now = Gateway::WallClock::now().time_since_epoch();
    return QDateTime::fromMSecsSinceEpoch(std::chrono::duration_cast<milliseconds>(now).count(),
                                          Qt::UTC);
}

} // namespace

TrustJudge::TrustJudge(Knowledge p_Knowledge)
    : Known(std::move(p_Knowledge))
{
}

TrustJudge::Problem TrustJudge::Judge(Evidence const& p_Evidence)
{
    using Reason = Signing::Verification::Reason;

    QMutexLocker const lock(&KnownMutex);
    // What is kept was verified when it came, perhaps by a key that has been replaced since.
    auto const keys = p_Evidence.IsCopy ? Known.Keys : Known.Keys.mid(Known.Keys.size() - 1);
    auto const body =
        QByteArray::fromRawData(p_Evidence.Body.data(), static_cast<int>(p_Evidence.Body.size()));
    auto const verification =
        Signing::Verify(body, QByteArray::fromStdString(p_Evidence.Signature), keys);
    switch (verification.Outcome) {
    case Reason::Malformed:
        return Distrust(Type::Unsigned, p_Evidence,
                        p_Evidence.Signature.empty() ? tr("there is no signature")
                                                     : tr("what lies beside it is no signature"));
    case Reason::UnknownKey:
        return Distrust(
            Type::ForeignKey, p_Evidence,
            tr("by the key %1 instead of %2").arg(verification.KeyId, Known.Keys.last().KeyId()));
    case Reason::WrongSignature:
        return Distrust(Type::Forged, p_Evidence, tr("the signature is of other bytes"));
    case Reason::Good:
        break;
    }
    return Compare(p_Evidence, verification.Comment);
}

TrustJudge::Problem TrustJudge::Compare(Evidence const& p_Evidence, Comment const& p_Comment)
{
    if (auto problem = CompareSubject(p_Evidence, p_Comment))
        return problem;
    if (auto problem = CompareAge(p_Evidence, p_Comment))
        return problem;
    if (p_Comment.Document == Role::Manifest && p_Comment.Build != Build)
        return Distrust(
            Type::OfAnotherBuild, p_Evidence,
            tr("it is of build %1, the version file names %2").arg(p_Comment.Build, Build));
    if (p_Comment.Document == Role::Key)
        return TakeKey(p_Evidence);
    Learn(p_Evidence, p_Comment);
    return std::nullopt;
}

/// Not everything is bound to game and channel: the list of hosts is the server's, and both
/// channels share builds and realms.
TrustJudge::Problem TrustJudge::CompareSubject(Evidence const& p_Evidence,
                                               Comment const& p_Comment) const
{
    auto const misplaced = [&](QString const& p_Cause) {
        return Distrust(Type::Misplaced, p_Evidence, p_Cause);
    };
    if (p_Comment.Document != RoleOf(p_Evidence))
        return misplaced(tr("as \"%1\"").arg(Comment::NameOf(p_Comment.Document)));
    if (p_Comment.Document == Role::Hosts)
        return std::nullopt;
    if (p_Comment.Game != Known.Game)
        return misplaced(tr("for the game %1").arg(p_Comment.Game));
    if (p_Comment.Platform != Platform())
        return misplaced(tr("for the platform %1").arg(p_Comment.Platform));
    if (p_Comment.Document == Role::Version && p_Comment.Channel != Known.Channel)
        return misplaced(tr("for the channel %1").arg(p_Comment.Channel));
    return std::nullopt;
}

TrustJudge::Problem TrustJudge::CompareAge(Evidence const& p_Evidence,
                                           Comment const& p_Comment) const
{
    if (p_Comment.Expires && *p_Comment.Expires < Now())
        return Distrust(Type::Expired, p_Evidence,
                        tr("since %1").arg(p_Comment.Expires->toString(Qt::ISODate)));
    // A manifest is never changed: the version file, which has a number, names the one in force.
    quint64 least = Known.Seen.value(p_Comment.Document);
    if (p_Evidence.IsCopy)
        least = p_Comment.Document == Role::Version ? Known.Kept : 0;
    if (p_Comment.Sequence >= least)
        return std::nullopt;
    return Distrust(Type::RolledBack, p_Evidence,
                    tr("number %1 after number %2").arg(p_Comment.Sequence).arg(least));
}

TrustJudge::Problem TrustJudge::TakeKey(Evidence const& p_Evidence)
{
    auto const key = Signing::PublicKey::FromText(QByteArray::fromStdString(p_Evidence.Body));
    if (!key || Known.Keys.contains(*key))
        return Distrust(Type::Unusable, p_Evidence, tr("it is no new key"));
    Known.Keys.append(*key);
    return std::nullopt;
}

void TrustJudge::Learn(Evidence const& p_Evidence, Comment const& p_Comment)
{
    if (p_Comment.Document == Role::Version)
        Build = p_Comment.Build;
    if (p_Evidence.IsCopy || p_Comment.Document == Role::Manifest)
        return;
    quint64& seen = Known.Seen[p_Comment.Document];
    seen = std::max(seen, p_Comment.Sequence);
}

std::string TrustJudge::KeyPath() const
{
    return (Known.Game + c_KeyName).toStdString(); // which never changes
}

TrustJudge::Knowledge TrustJudge::Learned() const
{
    QMutexLocker const lock(&KnownMutex);
    return Known;
}

QString TrustJudge::Platform()
{
#ifdef VARNHOLT_CONTENT_PLATFORM_WIN
    return QStringLiteral("win");
#else
    return QStringLiteral("mac");
#endif
}

} // namespace Varnholt::Host
