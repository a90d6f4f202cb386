#pragma once

namespace Varnholt::Host {

/// What a status means that the program ends with.
struct ExitStatus {
    int Status;
    char const* Meaning;
};

inline constexpr ExitStatus c_ExitStatuses[] = {
    {0, "done"},
    {1, "other failure"},
    {2, "usage"},
    {3, "update available"},
    {4, "files wrong or given up"},
    {5, "network"},
    {6, "disk full"},
    {7, "permission or path"},
    {8, "game running or folder in use"},
    {9, "module cannot be loaded"},
    {10, "not what its publisher has signed"},
    {130, "interrupted; the same command goes on"},
};

} // namespace Varnholt::Host
