/*
 * qor_lang2: localisation for desktop applications. The C interface of qor_lang2.dll (Windows)
 * and libqor_lang2.so (Linux).
 *
 * Strings: every string that crosses this interface is zero-terminated UTF-16 (QOR_LANG2_CHAR:
 * wchar_t on Windows, char16_t elsewhere). A string returned by the library is a new buffer that
 * the caller owns and must give back to QOR_LANG2_freeWideString, never to its own allocator.
 *
 * Language tags have the form language-COUNTRY ("en-US", "de-DE"; "ace-ID" for a language
 * without a two-letter code); letter case does not matter when a tag is passed in.
 *
 * Threads: every function may be called from any thread at any time, also while other threads
 * call any of them, and each answer is one that the same calls made one after another could
 * give. Adding, reloading and setting the language run one at a time (a call waits for the one
 * in progress, and so do QOR_LANG2_getCurrentLanguage and QOR_LANG2_findLocalizedFile); a switch
 * replaces all texts in one step. Look-ups (QOR_LANG2_getLocalString) take no lock and see the
 * texts of one language, never a mix; a switch waits until no look-up still reads the texts it
 * replaces. Look-ups may go on while the process exits (main returning,
 * exit()): the loaded texts are kept until the process ends. A file handle may be read from
 * several threads; free it once, after its last use. Unloading the library while other threads
 * still call it is not supported.
 *
 * Failures: only QOR_LANG2_add, QOR_LANG2_addEx and QOR_LANG2_reload report errors (-1).
 * QOR_LANG2_setCurrentLanguage returns 20 for a tag that is not language-COUNTRY. Other functions
 * answer null, an empty string or 0 where their comment says so; they never let an error cross
 * into the host.
 */
#ifndef QOR_LANG2_H
#define QOR_LANG2_H

#include <stdint.h>

#if defined(_WIN32)
#include <wchar.h>
typedef wchar_t QOR_LANG2_CHAR;
#else
#include <uchar.h>
typedef char16_t QOR_LANG2_CHAR;
#endif

/* A language-file handle: keeps one language file alive, even across QOR_LANG2_reload, until it
 * is given back to QOR_LANG2_freeQorLangFile. */
typedef void* QOR_LANG2_FILE_HANDLE;

#if defined(_WIN32)
#if defined(QOR_LANG2_BUILDING)
#define QOR_LANG2_API __declspec(dllexport)
#else
#define QOR_LANG2_API __declspec(dllimport)
#endif
#else
#define QOR_LANG2_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Registers a folder of language files (an absolute local path) for an application id. The
 * first registration of an id wins: later ones are ignored and still return 0. Files are read
 * lazily, at the first query. `reserved` is ignored. Returns 0, or -1 when the path cannot be
 * used (null arguments included). */
QOR_LANG2_API int32_t QOR_LANG2_add(const QOR_LANG2_CHAR* folderPath, void* reserved, const QOR_LANG2_CHAR* appId);

/* The same with the folder given as a URI text ("file:///usr/share/app/lang/"). Returns 0, or -1
 * when the text is not a valid URI (null arguments included). */
QOR_LANG2_API int32_t QOR_LANG2_addEx(const QOR_LANG2_CHAR* folderUri, const QOR_LANG2_CHAR* appId);

/* Forgets every folder's file list; each is scanned again at its next query (call it after files
 * changed on disk). Handles stay valid. Returns 0, or -1 on failure. */
QOR_LANG2_API int32_t QOR_LANG2_reload(void);

/* Makes `tag` the current language of the process and loads its strings: for each registered
 * application id the file <id>-<tag>.qorlang, else a file of the same language with another
 * country (the language's own country, "de-DE" for "de-AT", "en-US" for English, else the first
 * such tag in alphabetical order), else none. Files are chosen by name only. Strings of the
 * previous language never stay: with no file at all, every look-up answers its default.
 * QOR_LANG2_getCurrentLanguage answers `tag` whichever file answers. Returns 0, or 20 when the tag
 * is not a valid language-COUNTRY tag ("de" alone, "de-DE-x", "", null); then nothing changes. */
QOR_LANG2_API int32_t QOR_LANG2_setCurrentLanguage(const QOR_LANG2_CHAR* tag);

/* The current language's tag; an empty string before any successful QOR_LANG2_setCurrentLanguage.
 * Caller frees. Null only when memory runs out. */
QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_getCurrentLanguage(void);

/* Number of language files in the folder registered for `appId`: files named <appId>*.qorlang,
 * less those whose stored application id is another one ("myapp-tools-fr-FR.qorlang" is not a
 * language of "myapp"); 0 for an id never added (or null). */
QOR_LANG2_API int32_t QOR_LANG2_getLanguageCount(const QOR_LANG2_CHAR* appId);

/* The tag of the index-th language file of `appId` (folder order). Caller frees. Null for an
 * unknown id or an index outside 0 .. count - 1. */
QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_getLanguage(const QOR_LANG2_CHAR* appId, int32_t index);

/* A new handle on the index-th language file of `appId`, for the QOR_LANG2_FILE_* accessors.
 * Caller frees with QOR_LANG2_freeQorLangFile. Null for an unknown id or an index outside
 * 0 .. count - 1. */
QOR_LANG2_API QOR_LANG2_FILE_HANDLE QOR_LANG2_getLanguageFile(const QOR_LANG2_CHAR* appId, int32_t index);

/* Looks in the folder (a URI text) for prefix + current tag + infix + suffix, then for
 * prefix + "en-US" + infix + suffix; the name may hold the wildcards "*" and "?". Returns the
 * local path of the first file found (caller frees), or null when neither exists (or an
 * argument is null or not usable). */
QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_findLocalizedFile(const QOR_LANG2_CHAR* folderUri, const QOR_LANG2_CHAR* prefix,
                                                          const QOR_LANG2_CHAR* infix, const QOR_LANG2_CHAR* suffix);

/* The text of `key` in the current language, or a copy of `defaultText` when no loaded file
 * gives the key a non-empty text. Caller frees. A null key answers the default; a null default
 * reads as "". Null only when memory runs out.
 * Keys with context are context + U+0004 + key. A plural form is asked for with
 * key + U+0005 + the count in decimal digits ("file\x05" "21"): the answer is the form the file's
 * plural rule gives the count, or the default when the file has no such entry or form (pass
 * key for a count of 1 and the plural text otherwise to answer as gettext's ngettext does). */
QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_getLocalString(const QOR_LANG2_CHAR* key, const QOR_LANG2_CHAR* defaultText);

/* Frees a string returned by this library. Null is ignored. */
QOR_LANG2_API void QOR_LANG2_freeWideString(QOR_LANG2_CHAR* text);

/* Frees a handle returned by QOR_LANG2_getLanguageFile. Null is ignored. */
QOR_LANG2_API void QOR_LANG2_freeQorLangFile(QOR_LANG2_FILE_HANDLE file);

/* Descriptive data of a language file. Each returns a new string (caller frees); an empty string
 * when the file lacks the item; null for a null handle or one that holds no language file. */
QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_FILE_getAppID(QOR_LANG2_FILE_HANDLE file);
QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_FILE_getAuthor(QOR_LANG2_FILE_HANDLE file);
QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_FILE_getComment(QOR_LANG2_FILE_HANDLE file);
/* English name of the language and of its country, from the ISO code tables. */
QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_FILE_getEnglishName(QOR_LANG2_FILE_HANDLE file);
QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_FILE_getEnglishSubName(QOR_LANG2_FILE_HANDLE file);
/* Names of the language and of its variant in the language itself, as the file gives them. */
QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_FILE_getNativeName(QOR_LANG2_FILE_HANDLE file);
QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_FILE_getNativeSubName(QOR_LANG2_FILE_HANDLE file);
/* The file's language tag as the code tables spell it ("de-DE"); empty when the file has none. */
QOR_LANG2_API QOR_LANG2_CHAR* QOR_LANG2_FILE_getLanguageID(QOR_LANG2_FILE_HANDLE file);

#ifdef __cplusplus
}
#endif

#endif /* QOR_LANG2_H */
