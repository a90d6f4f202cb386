#pragma once

#include "Host/Core/FileFinding.hpp"
#include "Host/Core/NetworkDoor.hpp"

#include <QElapsedTimer>

#include <vector>

namespace Varnholt::Host {

/// Asks for the sizes of files, without their content. Module thread.
class SizeSurvey {
public:
    /// \param p_Folder where the beginnings of files lie that need not be fetched again
    /// \param p_Patience milliseconds in which no answer at all may come
    SizeSurvey(std::vector<FileFinding> p_Findings, NetworkDoor& p_Door, QString p_Folder,
               int p_Patience);

    /// Called once in each turn. \return true when no more answers are to be expected
    bool Look();

    /// With the sizes that are known; those that no server told stay unknown.
    std::vector<FileFinding> const& Findings() const { return Files; }
    quint32 Answered() const { return static_cast<quint32>(Next); }

private:
    bool Take(FileFinding& p_Finding) const;

    std::vector<FileFinding> Files;
    NetworkDoor& Door;
    QString Folder;
    int Patience;
    QElapsedTimer SinceAnswer;
    quint32 Known = 0;
    std::size_t Next = 0; ///< all before it are answered
};

} // namespace Varnholt::Host
