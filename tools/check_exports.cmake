# Fails unless the shared library exports exactly the twenty QOR_LANG2_* functions, that
# qor_lang2.h declares exactly these, and that nothing else leaves the library for a host to bind
# to. Runs on the build host (no Wine):
#   cmake -DLIBRARY=<libqor_lang2.so|qor_lang2.dll> -DFORMAT=<elf|pe> -DTOOL=<nm|objdump>
#         -DHEADER=<qor_lang2.h> -P check_exports.cmake
# ELF: the defined dynamic symbols (nm -D --defined-only). PE: the export name table
# (objdump -p); mingw's objdump for the DLL.

set(expected
  QOR_LANG2_add QOR_LANG2_addEx QOR_LANG2_reload
  QOR_LANG2_setCurrentLanguage QOR_LANG2_getCurrentLanguage
  QOR_LANG2_getLanguageCount QOR_LANG2_getLanguage QOR_LANG2_getLanguageFile
  QOR_LANG2_findLocalizedFile QOR_LANG2_getLocalString
  QOR_LANG2_freeWideString QOR_LANG2_freeQorLangFile
  QOR_LANG2_FILE_getAppID QOR_LANG2_FILE_getAuthor QOR_LANG2_FILE_getComment
  QOR_LANG2_FILE_getEnglishName QOR_LANG2_FILE_getEnglishSubName
  QOR_LANG2_FILE_getNativeName QOR_LANG2_FILE_getNativeSubName QOR_LANG2_FILE_getLanguageID)
list(SORT expected)
list(LENGTH expected count)
if(NOT count EQUAL 20)
  message(FATAL_ERROR "the expected list holds ${count} names, not 20")
endif()

foreach(var LIBRARY FORMAT TOOL HEADER)
  if(NOT DEFINED ${var} OR "${${var}}" STREQUAL "")
    message(FATAL_ERROR "check_exports.cmake: -D${var}=... is missing")
  endif()
endforeach()

function(compare what actual)
  list(SORT actual)
  if(NOT actual STREQUAL expected)
    set(missing ${expected})
    set(extra ${actual})
    if(actual)
      list(REMOVE_ITEM missing ${actual})
    endif()
    list(REMOVE_ITEM extra ${expected})
    list(REMOVE_DUPLICATES extra)
    message(FATAL_ERROR "${what} differ from the twenty exports.\n  missing: ${missing}\n  unexpected: ${extra}")
  endif()
endfunction()

# The header: every function declared with QOR_LANG2_API.
file(READ "${HEADER}" header)
string(REGEX MATCHALL "QOR_LANG2_API[^;(]*[ *](QOR_LANG2_[A-Za-z0-9_]+)[ \t\r\n]*\\(" declarations "${header}")
set(declared "")
foreach(declaration IN LISTS declarations)
  string(REGEX REPLACE ".*[ *](QOR_LANG2_[A-Za-z0-9_]+)[ \t\r\n]*\\($" "\\1" name "${declaration}")
  list(APPEND declared ${name})
endforeach()
compare("the functions declared in ${HEADER}" "${declared}")

# The library.
if(FORMAT STREQUAL "elf")
  execute_process(COMMAND "${TOOL}" -D --defined-only "${LIBRARY}"
                  OUTPUT_VARIABLE listing ERROR_VARIABLE errors RESULT_VARIABLE result)
  # "<address> <type> <name>"
  set(line_regex "^[0-9A-Fa-f]+ [A-Za-z] ([^ ]+)$")
  # What the linker itself defines in every shared object; no host binds to these.
  set(ignored _init _fini _edata _end __bss_start)
elseif(FORMAT STREQUAL "pe")
  execute_process(COMMAND "${TOOL}" -p "${LIBRARY}"
                  OUTPUT_VARIABLE listing ERROR_VARIABLE errors RESULT_VARIABLE result)
  # Only the lines of "[Ordinal/Name Pointer] Table": "\t[   0] QOR_LANG2_add".
  string(FIND "${listing}" "[Ordinal/Name Pointer] Table" start)
  if(start EQUAL -1)
    message(FATAL_ERROR "${LIBRARY} has no export name table:\n${listing}")
  endif()
  string(SUBSTRING "${listing}" ${start} -1 listing)
  set(line_regex "^[ \t]*\\[ *[0-9]+\\] ([^ ]+)$")
  set(ignored "")
else()
  message(FATAL_ERROR "FORMAT must be elf or pe, not '${FORMAT}'")
endif()
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${TOOL} failed on ${LIBRARY} (${result}): ${errors}")
endif()

string(REPLACE "\r" "" listing "${listing}")
string(REPLACE ";" "\\;" listing "${listing}")
string(REPLACE "\n" ";" lines "${listing}")
set(exported "")
foreach(line IN LISTS lines)
  if(line MATCHES "${line_regex}")
    list(APPEND exported "${CMAKE_MATCH_1}")
  elseif(FORMAT STREQUAL "pe" AND exported AND line STREQUAL "")
    break() # the end of the name table
  endif()
endforeach()
if(ignored)
  list(REMOVE_ITEM exported ${ignored})
endif()
compare("the names exported by ${LIBRARY}" "${exported}")
list(LENGTH exported count)
message(STATUS "${LIBRARY}: exactly the ${count} QOR_LANG2_* functions")
