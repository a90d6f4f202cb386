#pragma once

#include "Tests/Endurance/Randomness.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/ScriptedServer.hpp"

#include <QString>

#include <vector>

namespace Varnholt::TestSupport {

/// Makes servers fall ill in random ways, for one file or for all.
class SickServer {
public:
    SickServer(Randomness& p_Random, SampleContent const& p_Content,
               std::vector<ScriptedServer*> p_Servers);

    /// Gives some server another illness, or cures it. \return what it was
    QString Change();
    /// Tells every size well and then answers about half of the transfers badly.
    void SpoilTransfers();
    /// Every request is answered well from now on; connections that have fallen silent stay so.
    void Cure();

private:
    /// \param p_Size of the file; 0 when it may be any
    Answer DrawAnswer(int p_Size, QString& p_Name);
    Answer DrawCut(int p_Size, QString& p_Name);
    Answer DrawStatus(QString& p_Name);

    Randomness& Random;
    SampleContent const& Content;
    std::vector<ScriptedServer*> Servers;
};

} // namespace Varnholt::TestSupport
