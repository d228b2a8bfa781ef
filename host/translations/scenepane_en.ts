<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>ExportDialog</name>
    <message numerus="yes">
        <source>Export %n object(s)</source>
        <translation>
            <numerusform>Export %n object</numerusform>
            <numerusform>Export %n objects</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>and %n more</source>
        <translation>
            <numerusform>and %n more</numerusform>
            <numerusform>and %n more</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>ImportStatus</name>
    <message numerus="yes">
        <source>%1; %n file(s): %2</source>
        <translation>
            <numerusform>%1; %n file: %2</numerusform>
            <numerusform>%1; %n files: %2</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%1; messages about %n file(s)</source>
        <translation>
            <numerusform>%1; messages about %n file</numerusform>
            <numerusform>%1; messages about %n files</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message numerus="yes">
        <source>%Ln object(s) deleted</source>
        <translation>
            <numerusform>%Ln object deleted</numerusform>
            <numerusform>%Ln objects deleted</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln object(s) restored</source>
        <translation>
            <numerusform>%Ln object restored</numerusform>
            <numerusform>%Ln objects restored</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln object(s)</source>
        <translation>
            <numerusform>%Ln object</numerusform>
            <numerusform>%Ln objects</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln set(s) of free points</source>
        <translation>
            <numerusform>%Ln set of free points</numerusform>
            <numerusform>%Ln sets of free points</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln line(s)</source>
        <translation>
            <numerusform>%Ln line</numerusform>
            <numerusform>%Ln lines</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln picked point(s)</source>
        <translation>
            <numerusform>%Ln picked point</numerusform>
            <numerusform>%Ln picked points</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Now: %n sample(s)</source>
        <translation>
            <numerusform>Now: %n sample</numerusform>
            <numerusform>Now: %n samples</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln line(s) added</source>
        <translation>
            <numerusform>%Ln line added</numerusform>
            <numerusform>%Ln lines added</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>StatusLine</name>
    <message numerus="yes">
        <source>%Ln file(s) failed</source>
        <translation>
            <numerusform>%Ln file failed</numerusform>
            <numerusform>%Ln files failed</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln object(s)</source>
        <translation>
            <numerusform>%Ln object</numerusform>
            <numerusform>%Ln objects</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%1 of %Ln object(s)</source>
        <translation>
            <numerusform>%1 of %Ln object</numerusform>
            <numerusform>%1 of %Ln objects</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln triangle(s)</source>
        <translation>
            <numerusform>%Ln triangle</numerusform>
            <numerusform>%Ln triangles</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%1 of %Ln triangle(s)</source>
        <translation>
            <numerusform>%1 of %Ln triangle</numerusform>
            <numerusform>%1 of %Ln triangles</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>ViewNote</name>
    <message numerus="yes">
        <source>%n object(s), all hidden. Check those to show in the Objects pane.</source>
        <translation>
            <numerusform>%n object, all hidden. Check those to show in the Objects pane.</numerusform>
            <numerusform>%n objects, all hidden. Check those to show in the Objects pane.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>WindowTitle</name>
    <message numerus="yes">
        <source>%1 and %Ln more</source>
        <translation>
            <numerusform>%1 and %Ln more</numerusform>
            <numerusform>%1 and %Ln more</numerusform>
        </translation>
    </message>
</context>
</TS>
