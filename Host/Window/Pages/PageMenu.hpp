#pragma once

#include "Host/Window/Main/GameState.hpp"
#include "Host/Window/Pages/PageCommand.hpp"
#include "Launcher/Application/ApplicationManifest.hpp"

#include <QMenu>
#include <QString>

#include <map>
#include <vector>

namespace Varnholt::Host {

/// What else can be done with a game.
class PageMenu : public QMenu {
    Q_OBJECT

public:
    explicit PageMenu(QWidget* p_Parent = nullptr);

    /// Offers what the state allows.
    void Show(GameState const& p_State);
    /// Whether a state allows a command of the menu.
    static bool Allows(GameState const& p_State, PageCommand p_Command);
    void Translate();
    /// The languages of the build, as they have become known. \param p_Chosen the tag of one
    void ShowLanguages(std::vector<Launcher::ApplicationManifestLocale> const& p_Languages,
                       QString const& p_Chosen);
    QAction* ActionOf(PageCommand p_Command) const;

Q_SIGNALS:
    void Requested(Varnholt::Host::PageCommand p_Command);
    void LanguageChosen(QString p_Tag);

private:
    void Add(PageCommand p_Command);

    QMenu* const Languages;
    bool KnowsLanguages = false;
    std::map<PageCommand, QAction*> Actions;
};

} // namespace Varnholt::Host
