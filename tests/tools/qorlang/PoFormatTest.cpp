#include "Formats.h"

#include <gtest/gtest.h>
