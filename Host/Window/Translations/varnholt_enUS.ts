<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="en_US">
<context>
    <name>Varnholt::Host::IdleText</name>
    <message numerus="yes">
        <source>Not complete yet: %n file(s) to come</source>
        <translation>
            <numerusform>Not complete yet: %n file to come</numerusform>
            <numerusform>Not complete yet: %n files to come</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Varnholt::Host::ProgressTexts</name>
    <message numerus="yes">
        <source>%1 %2 in %n second(s).</source>
        <translation>
            <numerusform>%1 %2 in %n second.</numerusform>
            <numerusform>%1 %2 in %n seconds.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n second(s)</source>
        <translation>
            <numerusform>%n second</numerusform>
            <numerusform>%n seconds</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n minute(s)</source>
        <translation>
            <numerusform>%n minute</numerusform>
            <numerusform>%n minutes</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Varnholt::Host::TroubleStrip</name>
    <message numerus="yes">
        <source>and %n more</source>
        <translation>
            <numerusform>and %n more</numerusform>
            <numerusform>and %n more</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Varnholt::Host::UninstallDialog</name>
    <message numerus="yes">
        <source>These files are not of the game and &amp;stay (%n):</source>
        <translation>
            <numerusform>This file is not of the game and &amp;stays (%n):</numerusform>
            <numerusform>These files are not of the game and &amp;stay (%n):</numerusform>
        </translation>
    </message>
</context>
</TS>
