#include "Tests/Launch/GameScript.hpp"

#include "Tests/Support/FileTools.hpp"

#include <QtGlobal>

namespace Varnholt::TestSupport {

namespace {

// The list of starts comes last and in one piece: who has seen it finds the rest complete.
char const* const c_Recorder = R"(#!/bin/sh
env > "$0.environment"
arguments=$(printf '[%s]' "$@")
printf '%s\n' "$arguments" >> "$0.starts"
)";
char const* const c_Loop = R"(while [ -e "$0" ] && [ ! -e "$0.quit" ]; do sleep 0.02; done
)";

} // namespace

QByteArray GameScript::Text(Run p_Run)
{
    QByteArray text = c_Recorder;
    if (p_Run == Run::UntilQuit)
        text += c_Loop;
    return text;
}

void GameScript::Write(unsigned p_Mode, Run p_Run) const
{
    if (!WriteFile(Path, Text(p_Run)) || !SetMode(Path, p_Mode))
        qFatal("cannot write %s", qPrintable(Path));
}

QStringList GameScript::Starts() const
{
    return QString::fromUtf8(ReadFile(Path + QLatin1String(".starts")))
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QByteArray GameScript::Environment() const
{
    return ReadFile(Path + QLatin1String(".environment"));
}

void GameScript::Quit() const
{
    if (!WriteFile(Path + QLatin1String(".quit"), QByteArray("")))
        qFatal("cannot write %s", qPrintable(Path));
}

} // namespace Varnholt::TestSupport
