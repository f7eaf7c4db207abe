cmake_minimum_required(VERSION 3.25)

# The translator's whole cycle on a small C++ program: extract the keys of its first version,
# start German (PO) and French (TS, with its three plural forms), translate, change the program and
# its plural source, extract and merge again
# (changed texts fuzzy, removed ones obsolete), compile, pseudo-localise, and run the changed
# program in each language. Then a project whose build checks its translations.
#   cmake -DQORLANG=<qorlang> -DDEMO=<demo program> -DSOURCES=<this folder> -DCMAKE_DIR=<cmake/>
#         -DWORK_DIR=<folder> -P WorkflowCheck.cmake
# Skips (exit 77, by message) without gettext's programs.

foreach(program IN ITEMS xgettext msgmerge msginit)
  find_program(found_${program} ${program})
  if(NOT found_${program})
    message(FATAL_ERROR "SKIP: ${program} is not installed")
  endif()
endforeach()
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR}/lang)

function(qorlang)
  execute_process(COMMAND ${QORLANG} ${ARGN} WORKING_DIRECTORY ${WORK_DIR}
    RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out TIMEOUT 60)
  if(NOT rc EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "qorlang ${command}: exit ${rc}: ${out}")
  endif()
  set(out "${out}" PARENT_SCOPE)
endfunction()

function(expect_in file)
  file(READ ${WORK_DIR}/${file} text)
  foreach(expected IN LISTS ARGN)
    string(FIND "${text}" "${expected}" at)
    if(at EQUAL -1)
      message(SEND_ERROR "${file} lacks \"${expected}\":\n${text}")
    endif()
  endforeach()
endfunction()

function(replace file)
  file(READ ${WORK_DIR}/${file} text)
  set(pairs ${ARGN})
  while(pairs)
    list(POP_FRONT pairs from to)
    string(REPLACE "${from}" "${to}" text "${text}")
  endwhile()
  file(WRITE ${WORK_DIR}/${file} "${text}")
endfunction()

# 1. Keys of the first version: key, default as a comment, context, plural pair, reference.
file(COPY_FILE ${SOURCES}/demo_v1.cpp ${WORK_DIR}/demo.cpp)
qorlang(extract demo.cpp -o demo.pot)
expect_in(demo.pot "#. TRANSLATORS: the title of the main window\n#. default: \"Workflow demo\"\n#: demo.cpp:13\nmsgid \"app.title\""
  "msgctxt \"menu\"\nmsgid \"Quit\"" "msgid \"%d file\"\nmsgid_plural \"%d files\"")

# 2. Two languages started and translated.
qorlang(init demo.pot -o de.po)
qorlang(init demo.pot -o fr.ts)
expect_in(de.po "Language: de\\n" "Plural-Forms: nplurals=2; plural=(n != 1);")
replace(de.po "msgid \"app.title\"\nmsgstr \"\"" "msgid \"app.title\"\nmsgstr \"Ablauf-Demo\""
  "msgid \"Open file\"\nmsgstr \"\"" "msgid \"Open file\"\nmsgstr \"Datei öffnen\""
  "msgid \"Delete everything\"\nmsgstr \"\"" "msgid \"Delete everything\"\nmsgstr \"Alles löschen\""
  "#. TRANSLATORS" "# Anna: short, please\n#. TRANSLATORS"
  "msgstr[0] \"\"\nmsgstr[1] \"\"" "msgstr[0] \"%d Datei\"\nmsgstr[1] \"%d Dateien\"")
replace(fr.ts "<source>app.title</source>\n            <translation type=\"unfinished\"/>" "<source>app.title</source>\n            <translation>Démo du flux</translation>"
  "<source>Open file</source>\n            <translation type=\"unfinished\"/>" "<source>Open file</source>\n            <translation>Ouvrir le fichier</translation>"
  "<source>Quit</source>\n            <comment>menu</comment>\n            <translation type=\"unfinished\"/>"
  "<source>Quit</source>\n            <comment>menu</comment>\n            <translation>Quitter</translation>"
  # init gave French's three forms (one, many, other), not the template's two.
  "<translation type=\"unfinished\">\n                <numerusform/>\n                <numerusform/>\n                <numerusform/>"
  "<translation>\n                <numerusform>%d fichier</numerusform>\n                <numerusform>%d de fichiers</numerusform>\n                <numerusform>%d fichiers</numerusform>")

# 3. The program changes; the template and both translations follow.
file(COPY_FILE ${SOURCES}/demo.cpp ${WORK_DIR}/demo.cpp)
qorlang(extract demo.cpp -o demo.pot)
# msgmerge (PO) and the catalogue model (TS) must come to the same outcome.
qorlang(merge demo.pot de.po fr.ts)
if(NOT out STREQUAL "de.po: 1 kept, 2 added, 2 fuzzy, 1 obsolete\nfr.ts: 1 kept, 2 added, 2 fuzzy, 1 obsolete\n")
  message(SEND_ERROR "merge reported:\n${out}")
endif()
expect_in(de.po "# Anna: short, please\n" "#, fuzzy\n#| msgid \"Open file\"\nmsgid \"Open a file\"\nmsgstr \"Datei öffnen\""
  "#~ msgid \"Delete everything\"\n#~ msgstr \"Alles löschen\"" "msgid \"status.ready\""
  # A changed plural source: the forms kept, to be reviewed.
  "#, fuzzy, c-format\n#| msgid \"%d file\"\n#| msgid_plural \"%d files\"\nmsgid \"%d file\"\nmsgid_plural \"%d files found\"\nmsgstr[0] \"%d Datei\"")
expect_in(fr.ts "<source>Open a file</source>\n            <translation type=\"unfinished\">Ouvrir le fichier</translation>"
  "<translation type=\"vanished\">Quitter</translation>"
  "<translation type=\"unfinished\">\n                <numerusform>%d fichier</numerusform>\n                <numerusform>%d de fichiers</numerusform>\n                <numerusform>%d fichiers</numerusform>\n            </translation>\n            <extra-po-msgid_plural>%d files found</extra-po-msgid_plural>")

# 4. Reviewed and compiled (language from the output name), pseudo-localised.
replace(de.po "#, fuzzy\n#| msgid \"Open file\"\nmsgid" "msgid"
  "msgid \"Save %s\"\nmsgstr \"\"" "msgid \"Save %s\"\nmsgstr \"%s speichern\""
  "msgid \"status.ready\"\nmsgstr \"\"" "msgid \"status.ready\"\nmsgstr \"Bereit\""
  "#, fuzzy, c-format\n#| msgid \"%d file\"\n#| msgid_plural \"%d files\"\n" "#, c-format\n"
  "msgstr[1] \"%d Dateien\"" "msgstr[1] \"%d Dateien gefunden\"")
qorlang(check de.po --reference demo.pot)
qorlang(compile de.po -o lang/demo-de-DE.qorlang)
qorlang(compile fr.ts -o lang/demo-fr-FR.qorlang)
qorlang(pseudo demo.pot -o lang/demo-zxx-US.qorlang)

# 5. The changed program in each language, its plural for 1 and 2; fuzzy French is left out,
#    so defaults show.
foreach(case IN ITEMS
    "de-DE|Ablauf-Demo\nDatei öffnen\n%s speichern\nBereit\n%d Datei\n%d Dateien gefunden\n"
    "fr-FR|Démo du flux\nOpen a file\nSave %s\nReady\n%d file\n%d files found\n"
    "zxx-US|[Ẇǿřķƒŀǿẇ ḓḗḿǿ~~~~~]\n[Ǿƥḗƞ ȧ ƒīŀḗ~~~~]\n[Şȧṽḗ %s~~]\n[Řḗȧḓẏ~~]\n[%d ƒīŀḗ~~]\n[%d ƒīŀḗş ƒǿŭƞḓ~~~~~]\n"
    "en-US|Workflow demo\nOpen a file\nSave %s\nReady\n%d file\n%d files found\n")
  string(REPLACE "|" ";" case "${case}")
  list(GET case 0 tag)
  list(GET case 1 expected)
  string(REPLACE "\\n" "\n" expected "${expected}")
  execute_process(COMMAND ${DEMO} ${WORK_DIR}/lang ${tag} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err TIMEOUT 60)
  if(NOT rc EQUAL 0 OR NOT out STREQUAL expected)
    message(SEND_ERROR "demo in ${tag}: exit ${rc}, printed\n${out}${err}\nexpected\n${expected}")
  endif()
endforeach()

# 6. A build with CHECK fails on a translation whose placeholders break the program, and
#    maps gettext's po/de.po to its tag.
file(MAKE_DIRECTORY ${WORK_DIR}/project/po)
file(COPY ${SOURCES}/check_project/CMakeLists.txt DESTINATION ${WORK_DIR}/project)
file(COPY_FILE ${WORK_DIR}/demo.pot ${WORK_DIR}/project/po/demo.pot)
file(READ ${WORK_DIR}/de.po translated)
string(REPLACE "msgstr \"%s speichern\"" "msgstr \"%d speichern\"" broken "${translated}")
foreach(po IN ITEMS broken translated)
  file(WRITE ${WORK_DIR}/project/po/de.po "${${po}}")
  execute_process(COMMAND ${CMAKE_COMMAND} -S ${WORK_DIR}/project -B ${WORK_DIR}/project/build -DQORLANG_EXECUTABLE=${QORLANG}
      -DQOR_LANG2_CMAKE_DIR=${CMAKE_DIR}
    RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "configuring the checked project: ${out}")
  endif()
  execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/project/build RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(po STREQUAL "broken")
    string(FIND "${out}" "placeholders differ from the reference's source text" at)
    if(rc EQUAL 0 OR at EQUAL -1)
      message(SEND_ERROR "the build with a broken translation: exit ${rc}:\n${out}")
    endif()
  elseif(NOT rc EQUAL 0 OR NOT EXISTS ${WORK_DIR}/project/build/lang/demo-de-AT.qorlang)
    message(SEND_ERROR "the build with a good translation: exit ${rc}:\n${out}")
  endif()
endforeach()
