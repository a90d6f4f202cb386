#pragma once

#include "Launcher/Application/ApplicationManifest.hpp"

#include <QByteArray>
#include <QJsonValue>

#include <vector>

namespace Varnholt::Launcher {

/// The rows of a manifest's lists, taken out of its text before Qt reads that: for each of hundreds
/// of thousands Qt would make a container and look its keys up one by one. Only what is as plain as
/// nearly all rows are, texts without escapes and whole numbers under the known keys, is taken; the
/// rest is left to Qt, and with it what a faulty document means.
class ManifestRows {
public:
    using Entries = std::vector<ApplicationManifestFileEntry>;

    /// \param p_Document valid UTF-8
    explicit ManifestRows(QByteArray const& p_Document);

    /// The document, with a word of its own at the place of each run of rows that was taken.
    QByteArray const& Rest() const { return Text; }
    /// The rows whose place a value of the rest holds, null when it stands for itself.
    Entries* At(QJsonValue const& p_Value);

private:
    QString Mark; ///< begins each word; no document knows it
    QByteArray Text;
    std::vector<Entries> Runs;
};

} // namespace Varnholt::Launcher
