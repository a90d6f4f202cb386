#pragma once

#include "Signing/Signature.hpp"
#include "Tests/Host/SessionGame.hpp"

namespace Varnholt::TestSupport {

/// Somebody with a key who signs what a scripted server gives.
class Signer {
public:
    using Role = Signing::TrustedComment::Role;

    /// Everything of the comment but role, build and time.
    explicit Signer(Signing::TrustedComment const& p_Comment);

    /// The text that a host is given to trust.
    QString Key() const { return QString::fromLatin1(Secret.Public().ToText()); }
    QByteArray SignatureOf(QByteArray const& p_Bytes, Role p_Role,
                           QString const& p_Build = {}) const;
    /// Serves a document and its signature.
    void Serve(ScriptedServer& p_Server, QString const& p_Path, QByteArray const& p_Bytes,
               Role p_Role, QString const& p_Build = {}) const;
    /// Signs anew what `SampleContent::Publish` serves. \param p_Hosts empty: the server alone
    void Publish(SampleContent const& p_Content, ScriptedServer& p_Server,
                 QByteArray const& p_Hosts = {}) const;

    Signing::SecretKey const Secret = Signing::SecretKey::Create();
    Signing::TrustedComment Comment;
};

/// A game with a program, on a server whose documents are signed, and a host that trusts the key.
class SignedGame : public SessionGame {
public:
    SignedGame();

    /// Publishes the content under the publisher's comment as it is then.
    void PublishSigned();
    /// A file that the program of the game names when it runs, a line for each start.
    QByteArray Starts() const;
    QString Play() { return Run(RequestType::Play); }
    /// Every file in the game's folder with its bytes, but the host's lock.
    QMap<QString, QByteArray> Files() const;
    static QByteArray ProgramText(QByteArray const& p_Word);

    static QString const c_Program;
    static QString const c_Config;
    Signer Publisher;
};

} // namespace Varnholt::TestSupport
