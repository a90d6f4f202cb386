#pragma once

#include <QString>
#include <QTranslator>

#include <memory>
#include <vector>

namespace Varnholt::Host {

/// The language of the program: its texts, those of its libraries, its numbers. Main thread.
class Language {
public:
    Language() = default;
    ~Language();
    Language(Language const&) = delete;
    Language& operator=(Language const&) = delete;

    /// Every window is told by `QEvent::LanguageChange`.
    /// \param p_Code of a launcher language; empty or unknown: the system's, or else English
    void Use(QString const& p_Code);
    /// Of the language in use, one of the launcher's.
    QString const& Code() const { return InUse; }

private:
    void Install(QString const& p_File, QString const& p_Folder);

    QString InUse;
    std::vector<std::unique_ptr<QTranslator>> Translators;
};

} // namespace Varnholt::Host
