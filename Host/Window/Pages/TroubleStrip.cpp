#include "Host/Window/Pages/TroubleStrip.hpp"

#include "Host/Window/Main/RunText.hpp"
#include "Host/Window/Pages/ProgressTexts.hpp"
#include "Host/Window/Pages/Remedy.hpp"
#include "Host/Window/Style/Glyph.hpp"
#include "Host/Window/Style/WrappedList.hpp"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace Varnholt::Host {

TroubleStrip::TroubleStrip(PagePalette const& p_Palette, QWidget* p_Parent)
    : QFrame(p_Parent)
    , Title(new QLabel)
    , Text(new QLabel)
    , Body(new QBoxLayout(QBoxLayout::LeftToRight))
    , Buttons(new QBoxLayout(QBoxLayout::LeftToRight))
    , Close(new QToolButton)
    , Files(new WrappedList)
{
    setObjectName(QStringLiteral("strip"));
    Title->setObjectName(QStringLiteral("stripTitle"));
    Text->setObjectName(QStringLiteral("stripText"));
    for (QLabel* const label : {Title, Text}) {
        label->setTextFormat(Qt::PlainText); // it may name a file
        label->setWordWrap(true);
    }
    Close->setIcon(GlyphIcon(Glyph::Close, p_Palette.Text));
    Close->setShortcut(Qt::Key_Escape);
    Close->setFocusPolicy(Qt::StrongFocus);
    connect(Close, &QToolButton::clicked, this, &TroubleStrip::Dismissed);
    Files->hide();
    auto* const texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addWidget(Title);
    texts->addWidget(Text);
    auto* const row = new QHBoxLayout;
    row->setSpacing(8);
    Body->setSpacing(8);
    Body->addLayout(texts, 1);
    Body->addLayout(Buttons);
    row->addLayout(Body, 1);
    row->addWidget(Close, 0, Qt::AlignTop);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 12, 12, 12);
    layout->addLayout(row);
    layout->addWidget(Files);
    hide();
}

void TroubleStrip::Fold(bool p_IsNarrow)
{
    Body->setStretch(0, p_IsNarrow ? 0 : 1);
    for (QBoxLayout* const layout : {Body, Buttons})
        layout->setDirection(p_IsNarrow ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
}

void TroubleStrip::ShowFailure(Failure const& p_Failure, std::vector<FileFinding> const& p_GivenUp)
{
    Remedy const remedy = Remedy::Of(p_Failure);
    FillFiles(p_GivenUp);
    MakeButtons(remedy.Commands);
    Tell(RunText::Sentence(p_Failure), remedy.Text);
}

void TroubleStrip::ShowWait(ServerWait const& p_Wait)
{
    FillFiles({});
    MakeButtons({});
    Tell(p_Wait.IsRetry() ? RunText::Capitalized(p_Wait.Cause) : tr("The server is silent"),
         ProgressTexts::WaitText(p_Wait));
    Close->hide();
}

void TroubleStrip::ShowText(QString const& p_Text)
{
    FillFiles({});
    MakeButtons({});
    Tell(p_Text, {});
}

void TroubleStrip::Tell(QString const& p_Title, QString const& p_Text)
{
    bool const isNew = !isVisible() || Title->text() != p_Title;
    Close->show();
    Close->setAccessibleName(tr("Dismiss"));
    Close->setToolTip(tr("Dismiss"));
    Files->setAccessibleName(tr("Files"));
    Title->setText(p_Title);
    Text->setText(p_Text);
    Text->setVisible(!p_Text.isEmpty());
    show();
    if (!isNew)
        return;
    QAccessibleEvent event(Title, QAccessible::Alert); // to be read aloud
    QAccessible::updateAccessibility(&event);
}

/// Renewed only when others are offered: one that has the focus keeps it.
void TroubleStrip::MakeButtons(std::vector<PageCommand> const& p_Commands)
{
    std::vector<PageCommand> offered;
    for (PageCommand const command : p_Commands)
        if (command != PageCommand::ShowFiles || !ShownFiles.isEmpty())
            offered.push_back(command);
    while (QLayoutItem* const item = offered == Offered ? nullptr : Buttons->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    for (std::size_t i = 0; i < offered.size(); ++i) {
        PageCommand const command = offered[i];
        if (static_cast<int>(i) >= Buttons->count()) {
            auto* const button = new QPushButton;
            Buttons->addWidget(button);
            connect(button, &QPushButton::clicked, this, [this, command] {
                if (command == PageCommand::ShowFiles)
                    ToggleFiles();
                else
                    Q_EMIT Requested(command);
            });
        }
        auto* const button =
            static_cast<QPushButton*>(Buttons->itemAt(static_cast<int>(i))->widget());
        button->setText(Remedy::ButtonText(command));
    }
    Offered = offered;
}

void TroubleStrip::FillFiles(std::vector<FileFinding> const& p_GivenUp)
{
    constexpr int c_MostFiles = 200;

    QStringList files;
    for (FileFinding const& finding : p_GivenUp) {
        if (files.size() == c_MostFiles) {
            files += tr("and %n more", nullptr, static_cast<int>(p_GivenUp.size()) - c_MostFiles);
            break;
        }
        files += finding.Problem.Subject.isEmpty()
                     ? finding.Path
                     : finding.Path + QStringLiteral(": ") + finding.Problem.Sentence();
    }
    if (files == ShownFiles)
        return;
    ShownFiles = files;
    Files->clear();
    Files->addItems(files);
    Files->hide();
}

void TroubleStrip::ToggleFiles()
{
    Files->setVisible(!Files->isVisible());
}

} // namespace Varnholt::Host
