<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>zelto::view::AreaActions</name>
    <message numerus="yes">
        <source>%1, all %n shape(s)</source>
        <translation>
            <numerusform>%1, the shape</numerusform>
            <numerusform>%1, all %n shapes</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%1, %n selected shape(s)</source>
        <translation>
            <numerusform>%1, the selected shape</numerusform>
            <numerusform>%1, %n selected shapes</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>zelto::view::FileActions</name>
    <message numerus="yes">
        <source>%1 holds %n images; the first one is shown.</source>
        <translation>
            <numerusform>%1 holds %n image; it is shown.</numerusform>
            <numerusform>%1 holds %n images; the first one is shown.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>zelto::view::LayersPanel</name>
    <message numerus="yes">
        <source>%1
%2 × %3 pixels, %n band(s) of %4</source>
        <translation>
            <numerusform>%1
%2 × %3 pixels, %n band of %4</numerusform>
            <numerusform>%1
%2 × %3 pixels, %n bands of %4</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n file(s) closed for that.</source>
        <translation>
            <numerusform>%n file closed for that.</numerusform>
            <numerusform>%n files closed for that.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>zelto::view::TaskLine</name>
    <message numerus="yes">
        <source>%n second(s) left</source>
        <translation>
            <numerusform>%n second left</numerusform>
            <numerusform>%n seconds left</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n minute(s) left</source>
        <translation>
            <numerusform>%n minute left</numerusform>
            <numerusform>%n minutes left</numerusform>
        </translation>
    </message>
</context>
</TS>
