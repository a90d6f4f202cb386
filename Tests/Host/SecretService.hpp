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

    /// Why there is none on this machine; empty when there is one.
    QString const& Problem() const { return WhyNot; }
    /// Everything that the store has put on the disk.
    QByteArray BytesOnDisk() const;
    /// Ends the store and its bus; programs look for them in vain from then on.
    void Stop();

private:
    void StartBus();
    void StartStore();

    QTemporaryDir Folder;
    QProcess Bus;
    QProcess Store;
    QString WhyNot;
    std::optional<ScopedVariable> Address;
};

} // namespace Varnholt::TestSupport
