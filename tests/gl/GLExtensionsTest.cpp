#include "GLExtensions.h"

#include <gtest/gtest.h>

TEST(GLExtensions, ReadsTheDriversExtensionsAndLimits) {
    GLExtensions extensions;
    EXPECT_TRUE(extensions.isSupported("GL_EXT_framebuffer_object"));
    EXPECT_TRUE(extensions.isSupported("GL_ARB_texture_float"));
    EXPECT_FALSE(extensions.isSupported("gl_ext_framebuffer_object"));
    EXPECT_GE(GLExtensions::MAX_TEXTURE_SIZE, 2048);
    EXPECT_GE(GLExtensions::MAX_VERTEX_ATTRIBS, 16);
    EXPECT_GT(GLExtensions::MAX_COMBINED_TEXTURE_IMAGE_UNITS, 0);
}

TEST(GLExtensions, TheChecklistNamesWhatIsMissing) {
    GLExtensions extensions;
    EXPECT_TRUE(extensions.isSupported());
    const std::string header =
        "Error: Your OpenGL implementation is missing the following extensions :\n";
    EXPECT_EQ(extensions.getErrorMessage(), header);
    extensions.addToChecklist("GL_ARB_point_sprite");
    extensions.addToChecklist("GL_XYZ_imaginary");
    extensions.addToChecklist("GL_XYZ_unheard_of");
    EXPECT_FALSE(extensions.isSupported());
    EXPECT_EQ(extensions.getErrorMessage(), header + " - GL_XYZ_imaginary\n - GL_XYZ_unheard_of\n");
}

TEST(GLExtensions, TextFormListsSortedNamesAndPrintsTheLimits) {
    GLExtensions extensions;
    testing::internal::CaptureStdout();
    const std::string names = extensions.toString();
    const std::string printed = testing::internal::GetCapturedStdout();
    ASSERT_EQ(names.back(), '\n');
    std::vector<std::string> listed;
    std::size_t start = 0;
    for (std::size_t blank = names.find(' '); blank != std::string::npos;
         blank = names.find(' ', start)) {
        listed.push_back(names.substr(start, blank - start));
        start = blank + 1;
    }
    EXPECT_TRUE(std::is_sorted(listed.begin(), listed.end()));
    EXPECT_EQ(std::adjacent_find(listed.begin(), listed.end()), listed.end());
    EXPECT_EQ(printed.rfind("--- Implementation Independent API Values ---\n"
                            "GL_MAX_VERTEX_ATTRIBS ................... ",
                            0),
              0u);
    EXPECT_NE(printed.find("GL_MAX_TEXTURE_SIZE ..................... " +
                           std::to_string(GLExtensions::MAX_TEXTURE_SIZE) + "\n"),
              std::string::npos);
    EXPECT_NE(printed.find("GL_MAX_VERTEX_SHADER_INSTRUCTIONS_EXT ... 0\n"
                           "GL_MAX_FRAGMENT_LIGHTS_EXT .............. 0\n"
                           "---------------------------------------------\n"),
              std::string::npos);
}
