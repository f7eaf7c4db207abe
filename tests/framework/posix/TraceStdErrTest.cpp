#include "../FrameworkTest.h"

#include "framework/log/Trace.h"

namespace {

using namespace kore_test;

TEST(TracePosix, GoesToStandardErrorOnlyWhileEnabled)
{
    const bool was = isTraceEnabled();
    ::testing::internal::CaptureStderr();
    setTraceEnabled(false);
    debugTrace("silent.cpp", 1, "not written");
    setTraceEnabled(true);
    debugTrace("loud.cpp", 2, "");
    debugTrace("loud.cpp", 3, u"größer");
    setTraceEnabled(was);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "qor_trace: loud.cpp (2)\nqor_trace: loud.cpp (3) c=größer\n");
}

} // namespace
