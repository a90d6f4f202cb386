#pragma once

#include <QByteArray>
#include <QTextCodec>

namespace Varnholt::TestSupport {

/// Makes this the encoding of local texts, whatever the environment says, as long as it lives.
class LocalEncoding {
public:
    explicit LocalEncoding(QByteArray const& p_Name)
        : Before(QTextCodec::codecForLocale())
    {
        QTextCodec* const codec = QTextCodec::codecForName(p_Name);
        if (codec == nullptr)
            qFatal("unknown encoding");
        QTextCodec::setCodecForLocale(codec);
    }
    ~LocalEncoding() { QTextCodec::setCodecForLocale(Before); }
    LocalEncoding(LocalEncoding const&) = delete;
    LocalEncoding& operator=(LocalEncoding const&) = delete;

private:
    QTextCodec* Before;
};

} // namespace Varnholt::TestSupport
