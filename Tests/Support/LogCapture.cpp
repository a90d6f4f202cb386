#include "Tests/Support/LogCapture.hpp"

#include <QMutex>
#include <QMutexLocker>

namespace Varnholt::TestSupport {

namespace {

QMutex s_Mutex;
std::vector<LogCapture::Message> s_Messages;

void Collect(QtMsgType p_Type, QMessageLogContext const& p_Context, QString const& p_Text)
{
    QMutexLocker const lock(&s_Mutex);
    s_Messages.push_back({p_Type, QString::fromUtf8(p_Context.category), p_Text});
}

} // namespace

LogCapture::LogCapture()
{
    Clear();
    Before = qInstallMessageHandler(Collect);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(Before);
}

std::vector<LogCapture::Message> LogCapture::Messages() const
{
    QMutexLocker const lock(&s_Mutex);
    return s_Messages;
}

QStringList LogCapture::Texts(QString const& p_Category) const
{
    QStringList texts;
    for (Message const& message : Messages())
        if (p_Category.isEmpty() || message.Category == p_Category)
            texts += message.Text;
    return texts;
}

int LogCapture::Count(QString const& p_Text) const
{
    return Texts().count(p_Text);
}

int LogCapture::CountContaining(QString const& p_Part) const
{
    return Texts().filter(p_Part).size();
}

void LogCapture::Clear()
{
    QMutexLocker const lock(&s_Mutex);
    s_Messages.clear();
}

} // namespace Varnholt::TestSupport
