<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
    <extra-po-header-language>de_DE</extra-po-header-language>
    <extra-po-header-last_translator>Änne Müller &lt;anne@example.org&gt;</extra-po-header-last_translator>
    <extra-po-header-project_id_version>demo 1.0</extra-po-header-project_id_version>
    <extra-po-header_comment># A small catalogue that every qorlang build must compile to the same bytes, plural forms and a context included.</extra-po-header_comment>
    <extra-po-headers>Project-Id-Version,Last-Translator,Language,MIME-Version,Content-Type,Content-Transfer-Encoding</extra-po-headers>
<context>
    <name></name>
    <message>
        <source>Open &quot;%s&quot;</source>
        <translation>„%s“ öffnen</translation>
        <extra-po-flags>c-format</extra-po-flags>
    </message>
    <message numerus="yes">
        <source>%d file</source>
        <translation>
            <numerusform>%d Datei</numerusform>
            <numerusform>%d Dateien</numerusform>
        </translation>
        <extra-po-flags>c-format</extra-po-flags>
        <extra-po-msgid_plural>%d files</extra-po-msgid_plural>
    </message>
    <message>
        <source>Open</source>
        <comment>menu</comment>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Size &amp; &lt;width&gt;</source>
        <translation>Größe &amp; &lt;Breite&gt;</translation>
    </message>
    <message>
        <source>Two
lines	with a tab</source>
        <translation>Zwei
Zeilen	mit Tab</translation>
    </message>
    <message>
        <source>Windows line<byte value="xd"/>
end</source>
        <translation>Windows-Zeilen<byte value="xd"/>
ende</translation>
    </message>
    <message>
        <source>  padded  </source>
        <translation>  gepolstert  </translation>
    </message>
    <message>
        <source>Save 😀</source>
        <translation>保存 😀</translation>
    </message>
    <message>
        <source>Maybe</source>
        <translation type="unfinished">Vielleicht</translation>
    </message>
    <message>
        <source>Untranslated</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Gone</source>
        <translation type="vanished">Weg</translation>
    </message>
</context>
</TS>
