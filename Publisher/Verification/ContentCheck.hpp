#pragma once

#include <QString>

#include <functional>

namespace Varnholt::Publisher {

/// Reads a content file. Any thread.
/// \param p_Read gets the number of bytes of each block; may throw to stop the reading
/// \return what is wrong with it, null when its bytes have that digest
QString ProblemOfContent(QString const& p_Path, QString const& p_Md5,
                         std::function<void(qint64)> const& p_Read);

} // namespace Varnholt::Publisher
