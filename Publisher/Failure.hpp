#pragma once

#include <QString>

#include <stdexcept>

namespace Varnholt::Publisher {

/// Why a command cannot go on. `what()` is the sentence in UTF-8.
class Failure : public std::runtime_error {
public:
    /// Exit status of a command that was called in a wrong way.
    static constexpr int c_Usage = 2;
    /// Exit status of every other failure.
    static constexpr int c_Other = 1;

    /// \param p_Sentence one sentence for the person who runs the command: what is concerned, the
    /// cause and, where there is one, the cure
    explicit Failure(QString const& p_Sentence, int p_ExitStatus = c_Other)
        : std::runtime_error(p_Sentence.toStdString())
        , Status(p_ExitStatus)
    {
    }

    int ExitStatus() const { return Status; }

private:
    int Status;
};

} // namespace Varnholt::Publisher
