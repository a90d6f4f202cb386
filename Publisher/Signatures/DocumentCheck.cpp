#include "Publisher/Signatures/DocumentCheck.hpp"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <utility>

namespace Varnholt::Publisher {

using Signing::PublicKey;
using Signing::TrustedComment;
using Signing::Verification;

QByteArray DocumentCheck::ReadSignature(QString const& p_Document)
{
    QFile file(SignatureOf(p_Document));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.read(Signing::c_MaximumSignatureBytes + 1);
}

TrustedComment DocumentCheck::CommentOf(QString const& p_Path, QByteArray const& p_Content,
                                        QString const& p_AppId)
{
    using Role = TrustedComment::Role;

    QFileInfo const file(p_Path);
    QString const name = file.fileName();
    TrustedComment comment;
    comment.Game = p_AppId;
    comment.Channel = QStringLiteral("live");
    if (name == QLatin1String("cdns.info")) {
        comment.Document = Role::Hosts;
        comment.Game.clear(); // all games of a tree share it
    } else if (name == QLatin1String("realmlist.info")) {
        comment.Document = Role::RealmList;
    } else if (name == QLatin1String("trust-key")) {
        comment.Document = Role::Key;
    } else if (name == QLatin1String("info.json")) {
        comment.Document = Role::Manifest;
        comment.Build = QFileInfo(file.path()).fileName();
    } else {
        comment.Document = Role::Version;
        comment.Build =
            QJsonDocument::fromJson(p_Content).object()[QLatin1String("build")].toString();
        if (name == QLatin1String("version_dev.json"))
            comment.Channel = QStringLiteral("dev");
    }
    return comment;
}

DocumentCheck::DocumentCheck(QList<PublicKey> p_Keys, QString p_AppId)
    : Keys(std::move(p_Keys))
    , AppId(std::move(p_AppId))
{
}

namespace {

QString ForgeryIn(Verification const& p_Found, TrustedComment const& p_Wanted)
{
    using Reason = Verification::Reason;

    switch (p_Found.Outcome) {
    case Reason::Malformed:
        return QStringLiteral("has no signature, or none of ours");
    case Reason::UnknownKey:
        return QStringLiteral("is signed with another key, %1").arg(p_Found.KeyId);
    case Reason::WrongSignature:
        return QStringLiteral("is not what was signed");
    case Reason::Good:
        break;
    }
    TrustedComment const& comment = p_Found.Comment;
    bool const isAlike = comment.Document == p_Wanted.Document && comment.Game == p_Wanted.Game &&
                         comment.Channel == p_Wanted.Channel && comment.Build == p_Wanted.Build;
    return isAlike ? QString()
                   : QStringLiteral("is signed as something else: ") +
                         QString::fromUtf8(comment.ToText());
}

} // namespace

QString DocumentCheck::ForgeryOf(QString const& p_Path, QByteArray const& p_Content,
                                 QByteArray const& p_Signature) const
{
    return ForgeryIn(Signing::Verify(p_Content, p_Signature, Keys),
                     CommentOf(p_Path, p_Content, AppId));
}

QString DocumentCheck::ProblemOf(QString const& p_Path, QByteArray const& p_Content,
                                 QByteArray const& p_Signature, quint64& p_Sequence) const
{
    Verification const found = Signing::Verify(p_Content, p_Signature, Keys);
    QString forgery = ForgeryIn(found, CommentOf(p_Path, p_Content, AppId));
    auto const& end = found.Comment.Expires;
    p_Sequence = std::max(p_Sequence, found.Comment.Sequence);
    if (!forgery.isNull() || !end || *end > QDateTime::currentDateTimeUtc())
        return forgery;
    return QStringLiteral("its signature was good until ") + end->toString(Qt::ISODate);
}

} // namespace Varnholt::Publisher
