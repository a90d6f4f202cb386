#pragma once

#include "Tests/Endurance/Randomness.hpp"
#include "Tests/Support/SampleContent.hpp"

#include <QString>

namespace Varnholt::TestSupport {

/// Damages an installation the way people, other programs and crashes do.
class Damage {
public:
    Damage(Randomness& p_Random, SampleContent const& p_Content, QString const& p_Folder)
        : Random(p_Random)
        , Content(p_Content)
        , Folder(p_Folder)
    {
    }

    /// \return what was done
    QString Do();
    /// Removes about two files of three, of all or of the streamed ones.
    void RemoveMost();
    /// Takes folders away that stand in the place of files.
    void ClearTheWay() const;

private:
    QString Overwrite(QString const& p_Name, int p_Size);
    QString PutFolder(QString const& p_Name);
    QString SpoilList();

    Randomness& Random;
    SampleContent const& Content;
    QString const Folder;
};

} // namespace Varnholt::TestSupport
