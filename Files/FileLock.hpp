#pragma once

#include <QString>

namespace Varnholt {

/// Keeps everybody else out of something by the system's own lock on a file, which ends with the
/// process at the latest: that the file is there means nothing. Other locks of this process are
/// kept out too, programs that it starts do not inherit it. One thread at a time.
class FileLock {
public:
    enum class Outcome {
        Taken,
        Held,   ///< another has it, see `Holder`
        Failed, ///< see `Error`
    };

    /// \param p_Path of the file, which is created when it does not exist
    explicit FileLock(QString p_Path);
    /// Lets go.
    ~FileLock();
    FileLock(FileLock const&) = delete;
    FileLock& operator=(FileLock const&) = delete;

    /// \param p_Milliseconds to wait at most for another to let go
    Outcome Take(int p_Milliseconds = 0);
    bool IsTaken() const { return File >= 0; }
    /// The file stays.
    void Release();
    /// Takes the file away while nobody else can have it, and lets go.
    void Remove();

    /// Who has it, as far as the file tells: "varnholt-host, process 1234 on
    /// machine".
    QString Holder() const { return Name; }
    /// Why it could be neither taken nor found held, of `errno`; `EEXIST` for what is no file.
    int Error() const { return Cause; }

private:
    Outcome Try();
    Outcome Fail(int p_Error);
    bool IsAtPath(int p_File) const;
    void WriteName() const;

    QString Path;
    int File = -1;
    QString Name;
    int Cause = 0;
};

} // namespace Varnholt
