#pragma once
#include <gtest/gtest.h>
#include <string>

// What the work wrote: the player logs to standard output and reports failures on the error
// stream, so a test reads them or silences them.
template <typename Work> std::string logOf(Work work) {
    testing::internal::CaptureStdout();
    work();
    return testing::internal::GetCapturedStdout();
}
template <typename Work> std::string errorsOf(Work work) {
    testing::internal::CaptureStderr();
    work();
    return testing::internal::GetCapturedStderr();
}
