# qorlang_add_translations(<target> APP_ID <id> OUTPUT_DIRECTORY <dir> SOURCES <file>...
#                          [OPTIONS <qorlang compile option>...] [OUTPUT_FILES_VARIABLE <var>]
#                          [CHECK] [REFERENCE <file>] [TAGS <name>=<tag>...])
#
# Compiles translation sources (.po, .xlf/.xliff, .ts, .json, .txt) into language files at build
# time: <dir>/<id>-<tag>.qorlang, where the library looks for them. The tag comes from the end of
# each source's name ("de-DE.po", "myapp_de_DE.ts", "fr-FR.xlf") and is passed on as --language,
# so the file's name and content always agree. Names without a country, gettext's usual
# "po/de.po", "po/sr@latin.po", take their tag from TAGS (de=de-DE sr@latin=sr-ME: the name
# without its extension, "=", the tag). CHECK runs "qorlang check" on each source first (against
# REFERENCE, such as the template po/<app>.pot, when given) and fails the build on its errors:
# placeholders that differ from the source text, keys defined twice. <target> is built after its translations
# (a custom target <target>_translations). OPTIONS go to every "qorlang compile" (--use-fuzzy,
# --author NAME, ...). OUTPUT_FILES_VARIABLE receives the list of the language files, e.g. for
# install(FILES).
#
# The compiler is the imported target qor_lang2::qorlang (from find_package(qor_lang2)), or,
# inside the qor_lang2 build itself, its qorlang target. A cross build runs it through
# CMAKE_CROSSCOMPILING_EMULATOR, or uses the host's own compiler when QORLANG_EXECUTABLE names one.
include_guard(GLOBAL)

function(qorlang_add_translations target)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "CHECK" "APP_ID;OUTPUT_DIRECTORY;OUTPUT_FILES_VARIABLE;REFERENCE" "SOURCES;OPTIONS;TAGS")
  if(ARG_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "qorlang_add_translations: unknown arguments: ${ARG_UNPARSED_ARGUMENTS}")
  endif()
  foreach(required IN ITEMS APP_ID OUTPUT_DIRECTORY SOURCES)
    if(NOT ARG_${required})
      message(FATAL_ERROR "qorlang_add_translations(${target}): ${required} is missing")
    endif()
  endforeach()
  if(NOT TARGET ${target})
    message(FATAL_ERROR "qorlang_add_translations: ${target} is not a target")
  endif()
  if(QORLANG_EXECUTABLE)
    set(tool ${QORLANG_EXECUTABLE})
  elseif(TARGET qor_lang2::qorlang)
    set(tool qor_lang2::qorlang)
  elseif(TARGET qorlang)
    set(tool qorlang)
  else()
    message(FATAL_ERROR "qorlang_add_translations: no qorlang compiler (find_package(qor_lang2) first)")
  endif()
  set(command ${tool})
  # CMake puts the emulator before targets it builds, not before imported ones.
  if(TARGET ${tool} AND CMAKE_CROSSCOMPILING AND CMAKE_CROSSCOMPILING_EMULATOR)
    get_target_property(imported ${tool} IMPORTED)
    if(imported)
      set(command ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:${tool}>)
    endif()
  endif()

  cmake_path(ABSOLUTE_PATH ARG_OUTPUT_DIRECTORY BASE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR} NORMALIZE)
  set(outputs)
  foreach(source IN LISTS ARG_SOURCES)
    cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} NORMALIZE)
    cmake_path(GET source STEM LAST_ONLY stem)
    set(tag)
    foreach(mapping IN LISTS ARG_TAGS)
      if(mapping MATCHES "^([^=]+)=([A-Za-z][A-Za-z][A-Za-z]?)[-_]([A-Za-z][A-Za-z])$" AND CMAKE_MATCH_1 STREQUAL stem)
        string(TOLOWER "${CMAKE_MATCH_2}" language)
        string(TOUPPER "${CMAKE_MATCH_3}" country)
        set(tag "${language}-${country}")
      elseif(NOT mapping MATCHES "^[^=]+=")
        message(FATAL_ERROR "qorlang_add_translations(${target}): TAGS ${mapping}: write <name>=<tag>, such as de=de-DE")
      endif()
    endforeach()
    # language (two or three letters), "-" or "_", country (two letters), at the end of the name
    if(tag)
    elseif(stem MATCHES "(^|[^A-Za-z])([A-Za-z][A-Za-z][A-Za-z]?)[-_]([A-Za-z][A-Za-z])$")
      string(TOLOWER "${CMAKE_MATCH_2}" language)
      string(TOUPPER "${CMAKE_MATCH_3}" country)
      set(tag "${language}-${country}")
    else()
      message(FATAL_ERROR "qorlang_add_translations(${target}): ${source}: the file name must end in "
                          "a language-COUNTRY tag such as de-DE or de_DE, or TAGS must map it (TAGS ${stem}=<tag>, "
                          "such as de=de-DE)")
    endif()
    # The library reduces "--" to "-" in the names it looks for; so must the file's name.
    string(REPLACE "--" "-" name "${ARG_APP_ID}-${tag}.qorlang")
    set(output "${ARG_OUTPUT_DIRECTORY}/${name}")
    if(output IN_LIST outputs)
      message(FATAL_ERROR "qorlang_add_translations(${target}): two sources for ${tag}")
    endif()
    set(check)
    set(reference)
    if(ARG_REFERENCE)
      cmake_path(ABSOLUTE_PATH ARG_REFERENCE BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} NORMALIZE OUTPUT_VARIABLE reference)
    endif()
    if(ARG_CHECK)
      set(check COMMAND ${command} check ${source})
      if(reference)
        list(APPEND check --reference ${reference})
      endif()
    endif()
    add_custom_command(OUTPUT ${output}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${ARG_OUTPUT_DIRECTORY}
      ${check}
      COMMAND ${command} compile ${source} -o ${output} --app-id ${ARG_APP_ID} --language ${tag} ${ARG_OPTIONS}
      DEPENDS ${tool} ${source} ${reference}
      COMMENT "Compiling translation ${name}"
      VERBATIM)
    list(APPEND outputs ${output})
  endforeach()

  add_custom_target(${target}_translations DEPENDS ${outputs})
  add_dependencies(${target} ${target}_translations)
  if(ARG_OUTPUT_FILES_VARIABLE)
    set(${ARG_OUTPUT_FILES_VARIABLE} ${outputs} PARENT_SCOPE)
  endif()
endfunction()
