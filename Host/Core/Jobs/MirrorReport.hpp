#pragma once

#include <QString>
#include <QtGlobal>

namespace Varnholt::Host {

/// What was found out about one server of content.
struct MirrorReport {
    QString Host; ///< with port
    bool IsReachable = false;
    qint64 Milliseconds = -1;  ///< from the request for the manifest to its last byte
    bool GivesRanges = false;  ///< a download can be resumed there
    bool HasSameBuild = false; ///< its manifest is the default server's, byte for byte
    QString Cause;             ///< what is wrong, empty when nothing is

    bool IsInOrder() const { return IsReachable && GivesRanges && HasSameBuild; }
};

} // namespace Varnholt::Host
