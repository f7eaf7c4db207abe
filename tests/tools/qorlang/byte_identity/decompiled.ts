<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
    <extra-qorlang-application>app</extra-qorlang-application>
    <extra-qorlang-author>Änne Müller &lt;anne@example.org&gt;</extra-qorlang-author>
    <extra-qorlang-comment/>
    <extra-qorlang-native-name/>
    <extra-qorlang-native-sub-name/>
    <extra-qorlang-version>1</extra-qorlang-version>
    <context>
        <name/>
        <message>
            <source>Open "%s"</source>
            <translation>„%s“ öffnen</translation>
        </message>
        <message numerus="yes">
            <source>%d file</source>
            <translation>
                <numerusform>%d Datei</numerusform>
                <numerusform>%d Dateien</numerusform>
            </translation>
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
    </context>
</TS>
