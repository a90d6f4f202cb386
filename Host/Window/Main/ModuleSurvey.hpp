#pragma once

#include "Host/Window/Main/ModuleCard.hpp"

#include <QObject>
#include <QStringList>
#include <QThread>

namespace Varnholt::Host {

/// Finds out what modules look like, on a thread of its own: loading one and reading its pictures
/// takes time. A module is loaded for that moment only, and must be in no session then.
class ModuleSurvey : public QObject {
    Q_OBJECT

public:
    explicit ModuleSurvey(QObject* p_Parent = nullptr);
    /// Waits for the module in hand.
    ~ModuleSurvey() override;

    /// Answered by `Found` or `Refused` for each, in their order, and then by `Finished`.
    void Look(QStringList const& p_Files);

Q_SIGNALS:
    void Found(Varnholt::Host::ModuleCard p_Card);
    /// \param p_Why a sentence
    void Refused(QString p_File, QString p_Why);
    void Finished();

private:
    void LookAt(QString const& p_File);

    QThread Thread;
    QObject* const Worker; ///< lives on that thread
};

} // namespace Varnholt::Host
