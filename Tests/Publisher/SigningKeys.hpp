#pragma once

#include "Publisher/Signatures/DocumentCheck.hpp"
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

    Signing::Verification Verify(QString const& p_Path) const
    {
        return Signing::Verify(ReadFile(p_Path),
                               ReadFile(Publisher::DocumentCheck::SignatureOf(p_Path)),
                               {Secret.Public()});
    }
};

} // namespace Varnholt::TestSupport
