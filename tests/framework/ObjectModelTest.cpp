#include "framework/P.h"

#include <gtest/gtest.h>

TEST(Placeholder, Builds) { SUCCEED(); }
