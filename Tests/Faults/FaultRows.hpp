#pragma once

#include "Tests/Faults/FaultReport.hpp"

#include <vector>

namespace Varnholt::TestSupport {

/// What servers of content and the lines to them do wrong.
std::vector<FaultRow> ServerFaults();

/// Mirrors that are gone, go away or hold what they should not.
std::vector<FaultRow> MirrorFaults();

/// What goes wrong between a host and its server: outages and proxies; and what a limit of the rate
/// makes of it.
std::vector<FaultRow> LineFaults();

/// Servers that send a host elsewhere.
std::vector<FaultRow> RedirectFaults();

/// Servers whose certificates are not in order: real ones, with certificates made here.
std::vector<FaultRow> TrustFaults();

/// Somebody on the line of a host that has the publisher's key.
std::vector<FaultRow> SignatureFaults();

/// Disks that are full, from the beginning or from some moment on.
std::vector<FaultRow> DiskFaults();

/// What cannot be written: read-only folders, immutable files, folders in the place of files and
/// files in the place of folders.
std::vector<FaultRow> FolderFaults();

/// What somebody else removes or changes while a run is under way.
std::vector<FaultRow> RemovalFaults();

/// The host program killed at any moment of an install or an update.
std::vector<FaultRow> KillFaults();

/// Each call by which the host program changes files strikes once: the host dies before it, dies in
/// the middle of it, or is told of an error.
std::vector<FaultRow> CallFaults();

/// Two host programs at work on one folder.
std::vector<FaultRow> LockFaults();

/// The clock set by a day while the host program is at work.
std::vector<FaultRow> ClockFaults();

} // namespace Varnholt::TestSupport
