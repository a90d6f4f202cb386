#pragma once

#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/GameWithServer.hpp"
#include "Tests/Support/LogCapture.hpp"
#include "Tests/Support/TestApplication.hpp"
#include "Tests/Support/TestHost.hpp"

#include <functional>

namespace Varnholt::TestSupport {

/// A game with everything around it: a content server, a module that knows the build, a host, a
/// folder. The module is installed in the folder when the test says so.
///
/// \code
/// Game game(TestHost::Worker::ByHand);
/// game.Add({"a", "content of a"}).Publish().Install();
/// game.App.OnManifestReceived();
/// game.Host.RunNextAsync(); // the comparison
/// \endcode
class Game : public GameWithServer {
public:
    explicit Game(TestHost::Worker p_Worker = TestHost::Worker::Running);
    ~Game();
    Game(Game const&) = delete;
    Game& operator=(Game const&) = delete;

    /// Adds a file to the build.
    Game& Add(SampleFile const& p_File);
    /// Serves the build and hands its manifest and the only mirror, the server, to the module.
    Game& Publish();
    /// Makes the settings say that the game is installed in the folder.
    Game& Install();
    /// Publishes, installs and begins a run, as a first build or a later one.
    void Begin(bool p_FirstBuild = true);
    /// Runs until the module has nothing left to do.
    [[nodiscard]] bool Finish() { return Host.RunUntilIdle(); }
    /// Runs until a request of a file's path has reached the server so many times.
    [[nodiscard]] bool RunUntilRequested(QString const& p_File, int p_Times);
    /// Runs until a transfer is in flight and so many bytes of it lie on the disk.
    [[nodiscard]] bool RunUntilPart(QString const& p_File, qint64 p_Bytes);
    /// Runs until so many sizes have come.
    [[nodiscard]] bool RunUntilSizes(quint32 p_Count);
    /// Runs until the file of this index is the current one.
    [[nodiscard]] bool RunUntilFile(quint32 p_Index);
    /// What the module shows, even while the worker changes it.
    Launcher::ApplicationUISetting Progress();

    /// Permission bits as chmod() writes them; -1 without the file.
    int Mode(QString const& p_File) const { return ModeOf(Path(p_File)); }

    /// Paths of the download list.
    QStringList Listed() const;
    using GameWithServer::Requested;
    /// In the order of the requests.
    QStringList Requested() const { return Requested(Server); }

    /// Answers the module's `ShouldContinue` from now on; called with the number of the question,
    /// from 1. On whatever thread asks.
    void AnswerContinue(std::function<bool(int)> p_Answer);

    LogCapture Log;
    TestApplication App;
    TestHost Host;
};

} // namespace Varnholt::TestSupport
