#pragma once

#include <QString>

#include <stdexcept>

namespace Varnholt::Signing {

/// Why a secret key cannot be had or kept. `what()` is a sentence in UTF-8 without the file's name.
class KeyFailure : public std::runtime_error {
public:
    explicit KeyFailure(QString const& p_Sentence)
        : std::runtime_error(p_Sentence.toStdString())
    {
    }
};

} // namespace Varnholt::Signing
