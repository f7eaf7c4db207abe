<TS>
<context>
<a & b>