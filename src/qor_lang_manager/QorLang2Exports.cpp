// The exported C functions of the library: thin conversions between UTF-16 C strings and the
// language manager.
#include "qor_lang2.h"
