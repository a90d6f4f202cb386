#pragma once

#include "Host/Core/Settings/HostSettings.hpp"
#include "Host/Core/Trust/TrustJudge.hpp"

#include <QString>

#include <memory>
#include <optional>

namespace Varnholt::Host {

/// Whose signature the documents of a game must have, and what the settings remember of those that
/// had it: for each game, channel and key the highest sequence numbers, and the keys that have
/// followed it. Any thread.
class TrustRecord {
public:
    /// \param p_Key as `Signing::PublicKey` reads it; empty: nothing is verified
    TrustRecord(HostSettings& p_Settings, QString p_AppId, QString const& p_Key,
                bool p_UseDevChannel);

    bool IsOn() const { return Key.has_value(); }
    /// The key's line; empty when nothing is verified.
    QString KeyText() const { return Key ? QString::fromLatin1(Key->ToText()) : QString(); }
    /// For one run; null when nothing is verified.
    std::shared_ptr<TrustJudge> NewJudge() const;
    /// Remembers what a judge has learned.
    void Remember(TrustJudge const& p_Judge);
    /// The documents that the judge has seen are kept for offline use.
    void RememberCopies(TrustJudge const& p_Judge);

    /// Whether the installed game is what a manifest says that the key has signed, as far as the
    /// latest run knows.
    bool IsGameVerified() const;
    void MarkGame();
    void ForgetGame();

    /// Why a text is no key, as the end of a sentence; empty when it is one.
    static QString WhyNoKey(QString const& p_Text);

private:
    QString Place(QString const& p_Name) const;
    QString ChannelPlace(QString const& p_Name) const;
    QString VerifiedPlace() const;

    HostSettings& Settings;
    QString AppId;
    QString Channel;
    std::optional<Signing::PublicKey> Key; ///< that the user has named
};

} // namespace Varnholt::Host
