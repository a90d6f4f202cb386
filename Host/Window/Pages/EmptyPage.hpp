#pragma once

#include <QLabel>
#include <QWidget>

namespace Varnholt::Host {

/// Stands where a game would, and says why there is none.
class EmptyPage : public QWidget {
    Q_OBJECT

public:
    explicit EmptyPage(QWidget* p_Parent = nullptr);

    void setText(QString const& p_Text) { Text->setText(p_Text); }

private:
    QLabel* const Text;
};

} // namespace Varnholt::Host
