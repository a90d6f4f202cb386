#pragma once

#include "Host/Window/Main/ModuleCard.hpp"

#include <QButtonGroup>
#include <QString>
#include <QWidget>

#include <map>

class QVBoxLayout;

namespace Varnholt::Host {

/// The games, one icon each.
class GameColumn : public QWidget {
    Q_OBJECT

public:
    explicit GameColumn(QWidget* p_Parent = nullptr);

    void Add(ModuleCard const& p_Card);
    /// Marks the game of a module as the one that is shown.
    void Select(QString const& p_ModuleFile);

Q_SIGNALS:
    /// By the user; it is marked when `Select` says so.
    void Chosen(QString p_ModuleFile);

protected:
    void paintEvent(QPaintEvent* p_Event) override;

private:
    QVBoxLayout* Column;
    QButtonGroup Buttons;
    std::map<QString, QAbstractButton*> Known;
    QString Selected;
};

} // namespace Varnholt::Host
