<?xml version="1.0" encoding="utf-8"?>
<TS version="2.1" language="de_DE">
<context>
    <name></name>
    <message><source>Hello {0}, {name}</source><translation>Hallo {1}, {name}</translation></message>
    <message><source>%s of {{count}}</source><translation>%d von {count}</translation></message>
    <message><source>app.title</source><translation>{0}</translation></message>
</context>
</TS>
