#include "KVTDemosys.h"

#include <GL/glew.h>

#include <gtest/gtest.h>

TEST(GLErrPrint, QuietAndTrueWithoutErrors) {
    KVTDemosys::system_error = false;
    testing::internal::CaptureStdout();
    EXPECT_TRUE(KVTDemosys::glErrPrint("nothing"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_FALSE(KVTDemosys::system_error);
}

TEST(GLErrPrint, PrintsTheErrorWithItsTextAndSetsTheFlag) {
    KVTDemosys::system_error = false;
    glEnable(0xFFFF); // not a capability: invalid enum
    testing::internal::CaptureStdout();
    EXPECT_FALSE(KVTDemosys::glErrPrint("here"));
    const std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(out, "[GL_ERROR LOCATION = 'here']\n[GL_ERROR CODE 1280] 'invalid enumerant'\n");
    EXPECT_TRUE(KVTDemosys::system_error);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}
