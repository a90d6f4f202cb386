#include "Publisher/Tree/TreeTransaction.hpp"

#include "Publisher/Failure.hpp"
#include "Publisher/Source/NativePath.hpp"
#include "Publisher/Tree/StorageSync.hpp"
#include "Publisher/Tree/TreeMark.hpp"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

namespace Varnholt::Publisher {

namespace fs = std::filesystem;

namespace {

/// The umask decides nothing: a server that runs as another user must be able to read the tree.
constexpr mode_t c_FileMode = 0644;
constexpr mode_t c_FolderMode = 0755;

/// Enough for any text that has to be written when the disk is full.
constexpr int c_SpareBytes = 64 * 1024;

void WriteFile(QString const& p_Path, QByteArray const& p_Content)
{
    QFile file(p_Path);
    bool const written = file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                         file.write(p_Content) == p_Content.size() && file.flush() &&
                         ::fchmod(file.handle(), c_FileMode) == 0;
    if (!written)
        throw Failure(p_Path + QStringLiteral(": cannot be written: ") + file.errorString());
}

/// Needs no more room than the file has. \return false when that is too little, or none
bool WriteInto(QString const& p_Path, QByteArray const& p_Content)
{
    QFile file(p_Path);
    return file.size() >= p_Content.size() &&
           file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly) &&
           file.write(p_Content) == p_Content.size() && file.resize(p_Content.size());
}

} // namespace

TreeTransaction::TreeTransaction(QString const& p_Root)
    : Root(QDir::cleanPath(QFileInfo(p_Root).absoluteFilePath()))
    , Staging(TreeMark(Root).PrivatePath(QStringLiteral("new")))
    , Spare(TreeMark(Root).PrivatePath(QStringLiteral("spare")))
    , Lock(TreeMark(Root).PrivatePath(QStringLiteral("lock")))
{
    try {
        MakeFolder(Root);
        TakeLock();
    } catch (Failure const&) {
        Undo();
        throw;
    }
    // What a run that was killed has left behind.
    QDir(Staging).removeRecursively();
}

TreeTransaction::~TreeTransaction()
{
    if (!Committed)
        Undo();
}

void TreeTransaction::TakeLock()
{
    switch (Lock.Take()) {
    case FileLock::Outcome::Taken:
        return;
    case FileLock::Outcome::Held:
        throw Failure(Root +
                      QStringLiteral(": another run is publishing there (%1)").arg(Lock.Holder()));
    case FileLock::Outcome::Failed:
        throw Failure(Root + QStringLiteral(": the output folder cannot be locked: ") +
                      qt_error_string(Lock.Error()));
    }
}

QString TreeTransaction::NewFile()
{
    if (!QDir().mkdir(Staging) && !QFileInfo(Staging).isDir())
        throw Failure(Staging + QStringLiteral(": the folder cannot be made"));
    return Staging + QLatin1Char('/') + QString::number(NewFiles++);
}

void TreeTransaction::Add(QString const& p_NewFile, QString const& p_Target)
{
    Moves.emplace_back();
    Moves.back().NewFile = p_NewFile;
    Moves.back().Target = p_Target;
}

void TreeTransaction::AddText(QByteArray const& p_Content, QString const& p_Target)
{
    QString file = Spare;
    try {
        file = NewFile();
        WriteFile(file, p_Content);
    } catch (Failure const&) {
        if (SpareTaken || !WriteInto(Spare, p_Content))
            throw;
        SpareTaken = true;
        file = Spare;
    }
    Add(file, p_Target);
    Moves.back().IsText = true;
}

void TreeTransaction::AddTextWithNext(QByteArray const& p_Content, QString const& p_Target)
{
    AddText(p_Content, p_Target);
    Moves.back().IsWithNext = true;
}

/// The index of the first of those that are moved last, together.
std::size_t TreeTransaction::LastMoves() const
{
    std::size_t first = Moves.empty() ? 0 : Moves.size() - 1;
    while (first > 0 && Moves[first - 1].IsWithNext)
        --first;
    return first;
}

void TreeTransaction::KeepSpare() const
{
    if (QFileInfo(Spare).size() >= c_SpareBytes)
        return;
    try {
        WriteFile(Spare, QByteArray(c_SpareBytes, ' '));
    } catch (Failure const&) {
        // A part of it serves as well as far as it goes.
    }
}

void TreeTransaction::Commit()
{
    StorageSync(Root);
    std::size_t const last = LastMoves();
    for (std::size_t i = 0; i < Moves.size(); ++i) {
        if (i == last)
            StorageSync(Root);
        Perform(Moves[i]);
    }
    Committed = true;
    QDir(Staging).removeRecursively();
    KeepSpare();
    StorageSync(Root);
}

void TreeTransaction::Perform(Move& p_Move)
{
    MakeFolder(QFileInfo(p_Move.Target).path());
    QFileInfo const target(p_Move.Target);
    p_Move.Existed = target.exists();
    QFile file(p_Move.Target);
    if (p_Move.Existed && (!target.isFile() || !file.open(QIODevice::ReadOnly)))
        throw Failure(p_Move.Target + QStringLiteral(": is not a file that can be replaced"));
    if (p_Move.Existed && p_Move.IsText)
        p_Move.Replaced = file.readAll();
    std::error_code error;
    fs::rename(NativePath::From(p_Move.NewFile), NativePath::From(p_Move.Target), error);
    if (error) {
        throw Failure(p_Move.Target + QStringLiteral(": cannot be written: ") +
                      QString::fromStdString(error.message()));
    }
    p_Move.Done = true;
}

void TreeTransaction::MakeFolder(QString const& p_Folder)
{
    QFileInfo const info(p_Folder);
    if (info.isDir())
        return;
    if (info.exists())
        throw Failure(p_Folder + QStringLiteral(": is not a folder"));
    MakeFolder(info.path());
    QByteArray const name = QFile::encodeName(p_Folder);
    struct stat status = {};
    if (::mkdir(name.constData(), c_FolderMode) != 0 || ::stat(name.constData(), &status) != 0 ||
        ::chmod(name.constData(), c_FolderMode | (status.st_mode & S_ISGID)) != 0)
        throw Failure(p_Folder + QStringLiteral(": the folder cannot be made"));
    MadeFolders.push_back(p_Folder);
}

void TreeTransaction::Undo()
{
    for (auto move = Moves.rbegin(); move != Moves.rend(); ++move) {
        if (move->Done)
            Undo(*move);
    }
    // Without the lock the folder of new files is another run's.
    if (Lock.IsTaken()) {
        QDir(Staging).removeRecursively();
        if (!TreeMark(Root).IsThere())
            Lock.Remove();
    }
    for (auto folder = MadeFolders.rbegin(); folder != MadeFolders.rend(); ++folder)
        QDir().rmdir(*folder);
}

void TreeTransaction::Undo(Move const& p_Move)
{
    std::error_code error;
    if (!p_Move.Existed) // goes back, where the next run may find it
        fs::rename(NativePath::From(p_Move.Target), NativePath::From(p_Move.NewFile), error);
    if (!p_Move.Replaced)
        return;
    try {
        WriteFile(p_Move.NewFile, *p_Move.Replaced);
        fs::rename(NativePath::From(p_Move.NewFile), NativePath::From(p_Move.Target), error);
    } catch (Failure const&) {
        // Nothing better is left to do: the failure that brought us here is the one to report.
    }
}

} // namespace Varnholt::Publisher
