<?xml version="1.0" encoding="utf-8"?>
<TS version="2.1" language="ja_JP">
<context>
    <name>MainWindow</name>
    <message><source>Close</source><translation>閉じる</translation></message>
</context>
<context>
    <name></name>
    <message><source>a<byte value="x5"/>b</source><translation>x</translation></message>
</context>
</TS>
