/* qor_lang2: localisation library for desktop applications, C interface. */
#ifndef QOR_LANG2_H
#define QOR_LANG2_H

/* Every string that crosses this interface is zero-terminated UTF-16. */
#if defined(_WIN32)
#include <wchar.h>
typedef wchar_t QOR_LANG2_CHAR;
#else
#include <uchar.h>
#if defined(__cplusplus)
typedef char16_t QOR_LANG2_CHAR;
#else
typedef char16_t QOR_LANG2_CHAR;
#endif
#endif

#if defined(_WIN32)
#if defined(QOR_LANG2_BUILDING)
#define QOR_LANG2_API __declspec(dllexport)
#else
#define QOR_LANG2_API __declspec(dllimport)
#endif
#else
#define QOR_LANG2_API __attribute__((visibility("default")))
#endif

#endif /* QOR_LANG2_H */
