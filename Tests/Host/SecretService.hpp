#pragma once

#include "Tests/Support/ScopedVariable.hpp"

#include <QProcess>
#include <QTemporaryDir>

#include <optional>

namespace Varnholt::TestSupport {

/// A desktop's secret store of its own, unlocked, on a message bus of its own; programs that are
/// started meanwhile find it by their environment.
class SecretService {
public:
    SecretService();
    ~SecretService();
    SecretService(SecretService const&) = delete;
    SecretService& operator=(SecretService const&) = delete;

    /// Whether the programs that it needs are installed.
    static bool IsPossible();
    /// Everything that the store has put on the disk.
    QByteArray BytesOnDisk() const;
    /// Ends the store and its bus; programs look for them in vain from then on.
    void Stop();

private:
    QByteArray StartBus();
    void StartStore();

    QTemporaryDir Folder;
    QProcess Bus;
    QProcess Store;
    std::optional<ScopedVariable> Address;
};

} // namespace Varnholt::TestSupport
