#pragma once

#include <QString>
#include <QtGlobal>

namespace Varnholt::Host {

/// The room on one volume that files of a game lie on, or will.
struct VolumeSpace {
    QString Folder;      ///< one that exists on the volume
    quint32 Files = 0;   ///< that are to come there
    quint32 Unsized = 0; ///< of these, those whose size is not known; they count as nothing
    qint64 Free = -1;    ///< bytes; negative when unknown
    qint64 Needed = 0;   ///< bytes; negative when what is replaced is larger

    bool IsKnown() const { return Free >= 0; }
    /// Bytes that are free when all has come; negative when there is no room for it. Only when
    /// known.
    qint64 After() const { return Free - Needed; }

    bool operator==(VolumeSpace const& p_Other) const
    {
        return Folder == p_Other.Folder && Files == p_Other.Files && Unsized == p_Other.Unsized &&
               Free == p_Other.Free && Needed == p_Other.Needed;
    }
};

} // namespace Varnholt::Host
