#include "Publisher/Rules/TextPosition.hpp"

#include <QString>
#include <QVector>

namespace Varnholt::Publisher {

TextPosition TextPosition::At(QByteArray const& p_Text, int p_Offset)
{
    QByteArray const before = p_Text.left(qMax(0, p_Offset));
    TextPosition position;
    position.Line = 1 + before.count('\n');
    QByteArray const line = before.mid(before.lastIndexOf('\n') + 1);
    position.Column = 1 + QString::fromUtf8(line).toUcs4().size();
    return position;
}

} // namespace Varnholt::Publisher
