<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
    <extra-po-header-last_translator>Ivan</extra-po-header-last_translator>
<context>
    <name></name>
    <message><source>Open</source><comment>menu</comment><translation>Открыть</translation></message>
    <message><source>Plain</source><translation>Просто</translation></message>
    <message numerus="yes"><source>a file</source><translation>
            <numerusform>%d файл</numerusform>
            <numerusform>%d файла</numerusform>
        </translation><extra-po-flags>c-format</extra-po-flags></message>
    <message numerus="yes"><source>%d file</source><translation>
            <numerusform>%d файл</numerusform><numerusform>%d файла</numerusform><numerusform>%d файлов</numerusform>
        </translation><extra-po-msgid_plural>%d files</extra-po-msgid_plural></message>
    <message><source>Fuzzy</source><translation type="unfinished">Нечётко</translation></message>
    <message><source>Old</source><translation type="vanished">Старое</translation></message>
    <message><source><byte value="xd"/>
line<byte value="x7"/>
</source><translation> </translation></message>
</context>
<context>
    <name>MainWindow</name>
    <message><source>Open</source><comment>verb</comment><translation>Открывать</translation></message>
    <message><source>Close</source><translation>Закрыть</translation></message>
</context>
</TS>
