#pragma once

#include "Publisher/Signatures/TreeSigner.hpp"
#include "Signing/SecretKey.hpp"
#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Support/FileTools.hpp"

namespace Varnholt::TestSupport {

/// A key of its own without a password, and what a tree has signed with it.
struct SigningKeys {
    Signing::SecretKey const Secret = Signing::SecretKey::Create();

    Publisher::SigningOptions Options(std::optional<int> p_Days = {}) const
    {
        return {Secret, p_Days, false};
    }

    /// Gives a signed tree another key.
    static void Change(PublishedGame const& p_Game,
                       Signing::SecretKey const& p_Next = Signing::SecretKey::Create())
    {
        Publisher::TreeSigner::ChangeKey(p_Game.Options.Output, p_Game.Options.Signing, p_Next);
    }

    Signing::Verification Verify(QString const& p_Path) const
    {
        return Signing::Verify(ReadFile(p_Path),
                               ReadFile(Publisher::DocumentCheck::SignatureOf(p_Path)),
                               {Secret.Public()});
    }
};

} // namespace Varnholt::TestSupport
