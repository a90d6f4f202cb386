#pragma once

#include "Host/Core/Jobs/FileFinding.hpp"
#include "Host/Core/Network/NetworkDoor.hpp"

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
    quint32 Answered() const { return Settled; }

private:
    std::vector<FileFinding> Files;
    NetworkDoor& Door;
    QString Folder;
    int Patience;
    QElapsedTimer SinceAnswer;
    quint32 Settled = 0; ///< files that are answered, with a size or without
};

} // namespace Varnholt::Host
