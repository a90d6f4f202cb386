#pragma once

#include "Signing/Signature.hpp"

#include <QByteArray>
#include <QList>
#include <QString>

namespace Varnholt::Publisher {

/// The files of a tree that are signed, and whether their signatures are what clients want: those
/// of version files, manifests, lists and the next key. Each lies beside its file.
class DocumentCheck {
public:
    /// Behind the document's name.
    static QString SignatureOf(QString const& p_Document)
    {
        return p_Document + QStringLiteral(".minisig");
    }

    /// The signature beside a document, or its beginning when it is too long to be one; empty
    /// without one.
    static QByteArray ReadSignature(QString const& p_Document);

    /// What the signature of a document says of it, without platform, number and times.
    /// \param p_Path of the document, in a tree or on a server
    static Signing::TrustedComment CommentOf(QString const& p_Path, QByteArray const& p_Content,
                                             QString const& p_AppId);

    /// \param p_Keys whose signatures are good; none: nothing is looked at
    DocumentCheck(QList<Signing::PublicKey> p_Keys, QString p_AppId);

    bool IsOn() const { return !Keys.isEmpty(); }

    /// \return what is wrong, null when the document was signed as what it is, also when the
    /// signature has expired
    QString ForgeryOf(QString const& p_Path, QByteArray const& p_Content,
                      QByteArray const& p_Signature) const;
    /// The same, but an expired signature is wrong too.
    /// \param p_Sequence gets the signature's number when that is higher
    QString ProblemOf(QString const& p_Path, QByteArray const& p_Content,
                      QByteArray const& p_Signature, quint64& p_Sequence) const;

private:
    QList<Signing::PublicKey> Keys;
    QString AppId;
};

} // namespace Varnholt::Publisher
