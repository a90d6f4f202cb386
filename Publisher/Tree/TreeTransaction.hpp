#pragma once

#include "Files/FileLock.hpp"

#include <QByteArray>
#include <QString>

#include <atomic>
#include <optional>
#include <vector>

namespace Varnholt::Publisher {

/// Changes a published tree completely or not at all.
///
/// New files are written in a folder of their own inside the tree and moved to their places by
/// `Commit()`, in the order in which they were added. Until `Commit()` has returned, the destructor
/// takes everything back. Only one transaction at a time can be open on a tree.
///
/// A spare file in the tree takes the place of a new small file when its disk is full.
class TreeTransaction {
public:
    /// \param p_Root the tree; created when it does not exist
    /// \throws Failure when it cannot be written, or another transaction is open on it
    explicit TreeTransaction(QString const& p_Root);
    ~TreeTransaction();
    TreeTransaction(TreeTransaction const&) = delete;
    TreeTransaction& operator=(TreeTransaction const&) = delete;

    /// A name for a new file, on the tree's file system. Any thread.
    /// \throws Failure
    QString NewFile();

    /// Moves a file that was written under a `NewFile()` name to p_Target when committing; an
    /// existing file there is replaced in one step and not brought back.
    void Add(QString const& p_NewFile, QString const& p_Target);

    /// The same for a small file with the given content; the one that it replaces comes back.
    void AddText(QByteArray const& p_Content, QString const& p_Target);

    /// The same for one that takes its place right before the file that is added next: nothing that
    /// takes time happens in between.
    void AddTextWithNext(QByteArray const& p_Content, QString const& p_Target);

    /// Everything is on disk before the last added file is moved, with those that belong to it. The
    /// tree stays locked. \throws Failure, after which the destructor takes everything back
    void Commit();

private:
    struct Move {
        QString NewFile;
        QString Target;
        bool IsText = false;
        bool IsWithNext = false;
        std::optional<QByteArray> Replaced; ///< text that the target had
        bool Existed = false;
        bool Done = false;
    };

    void TakeLock();
    std::size_t LastMoves() const;
    void MakeFolder(QString const& p_Folder);
    void KeepSpare() const;
    void Perform(Move& p_Move);
    void Undo();
    void Undo(Move const& p_Move);

    QString Root;
    QString Staging;
    QString Spare;
    bool SpareTaken = false;
    FileLock Lock;
    std::atomic<quint64> NewFiles{0};
    std::vector<Move> Moves;
    std::vector<QString> MadeFolders; ///< in the order of their making
    bool Committed = false;
};

} // namespace Varnholt::Publisher
