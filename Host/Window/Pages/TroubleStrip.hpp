#pragma once

#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Jobs/FileFinding.hpp"
#include "Host/Core/Jobs/RunSnapshot.hpp"
#include "Host/Window/Pages/PageCommand.hpp"
#include "Host/Window/Style/PagePalette.hpp"

#include <QFrame>
#include <QStringList>

#include <vector>

class QBoxLayout;
class QLabel;
class QToolButton;

namespace Varnholt::Host {

class WrappedList;

/// What has gone wrong, why, and what to do about it, with the buttons that do it.
class TroubleStrip : public QFrame {
    Q_OBJECT

public:
    explicit TroubleStrip(PagePalette const& p_Palette, QWidget* p_Parent = nullptr);

    void ShowFailure(Failure const& p_Failure, std::vector<FileFinding> const& p_GivenUp);
    /// Something that passes by itself: without buttons.
    void ShowWait(ServerWait const& p_Wait);
    /// A sentence of the window's own.
    void ShowText(QString const& p_Text);
    void ToggleFiles();
    /// Puts the buttons below the texts, and below each other.
    void Fold(bool p_IsNarrow);

Q_SIGNALS:
    void Requested(Varnholt::Host::PageCommand p_Command);
    void Dismissed();

private:
    void Tell(QString const& p_Title, QString const& p_Text);
    void MakeButtons(std::vector<PageCommand> const& p_Commands);
    void FillFiles(std::vector<FileFinding> const& p_GivenUp);

    QLabel* const Title;
    QLabel* const Text;
    QBoxLayout* const Body;
    QBoxLayout* const Buttons;
    QToolButton* const Close;
    WrappedList* const Files;
    std::vector<PageCommand> Offered;
    QStringList ShownFiles;
};

} // namespace Varnholt::Host
