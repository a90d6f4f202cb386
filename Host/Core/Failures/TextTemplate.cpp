#include "Host/Core/Failures/TextTemplate.hpp"

namespace Varnholt::Host {

QString FillTemplate(QString const& p_Template, QString const& p_Subject, QString const& p_Detail)
{
    QString filled;
    for (int i = 0; i < p_Template.size(); ++i) {
        QStringRef const mark = p_Template.midRef(i, 3);
        if (mark == QLatin1String("{s}"))
            filled += p_Subject;
        else if (mark == QLatin1String("{d}"))
            filled += p_Detail;
        else {
            filled += p_Template[i];
            continue;
        }
        i += 2;
    }
    return filled;
}

} // namespace Varnholt::Host
