<TS version="2.1" language="ja_JP">
<context><name>MainWindow</name>
  <message><source>app.title</source><translation>題名</translation></message>
  <message><source>menu.quit</source><comment>short</comment><translation>終了</translation></message>
</context>
<context><name>qor_lang2</name>
  <message><source>app.title</source><comment>My App</comment><translation>アプリ</translation></message>
  <message><source>Open file</source><translation>開く</translation></message>
</context>
<context><name>Dialog</name>
  <message><source>Open</source><comment>verb</comment><translation>開ける</translation></message>
</context>
</TS>