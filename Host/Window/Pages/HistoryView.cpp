#include "Host/Window/Pages/HistoryView.hpp"

#include <QLocale>
#include <QScrollBar>

namespace Varnholt::Host {

HistoryView::HistoryView(QWidget* p_Parent)
    : WrappedList(p_Parent)
{
    setObjectName(QStringLiteral("history"));
}

void HistoryView::Add(HistoryEntry const& p_Entry)
{
    constexpr int c_MostEntries = 500;

    bool const isAtEnd = verticalScrollBar()->value() == verticalScrollBar()->maximum();
    QString const time =
        QLocale().toString(p_Entry.Time.toLocalTime(), QStringLiteral("dd.MM.  HH:mm:ss"));
    addItem(time + QStringLiteral("   ") + p_Entry.Text);
    if (p_Entry.Severity == Notice::Level::Warning) {
        QFont font = item(count() - 1)->font();
        font.setBold(true);
        item(count() - 1)->setFont(font);
    }
    if (count() > c_MostEntries)
        delete takeItem(0);
    if (isAtEnd)
        scrollToBottom();
}

QStringList HistoryView::Lines() const
{
    QStringList lines;
    for (int i = 0; i < count(); ++i)
        lines += item(i)->text();
    return lines;
}

} // namespace Varnholt::Host
