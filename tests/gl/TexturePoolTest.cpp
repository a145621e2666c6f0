#include "DataTexturePool.h"
#include "Texture.h"

#include <GL/glew.h>

#include <gtest/gtest.h>

namespace {

Texture* sized(const std::string& file, int width, int height, int fileSize) {
    Texture* texture = new Texture(file, 0);
    texture->setSize(width, height);
    texture->setFileSize(fileSize);
    return texture;
}

} // namespace

TEST(DataTexturePool, AnEmptyPoolReportsZeroTotals) {
    DataTexturePool pool;
    EXPECT_EQ(pool.toString(), "DataTexturePool {\n"
                               "    total memory size : 0 MB - 0 bytes\n"
                               "    total file size : 0 mb - 0 bytes\n"
                               "    numTextures = 0\n"
                               "}\n");
}

TEST(DataTexturePool, ALaterTextureUnderTheSameKeyWinsAndCountsAsAnAddition) {
    DataTexturePool pool;
    pool.addTexture("logo", sized("old.png", 4, 4, 10));
    pool.addTexture("logo", sized("new.png", 512, 512, 2048));
    EXPECT_EQ(pool.size(), 1);
    EXPECT_EQ(pool.getTexture("logo")->getFilename(), "new.png");
    EXPECT_TRUE(pool.isFileInPool("old.png")) << "the file map keeps every file added";
    EXPECT_EQ(pool.getTextureTotalMemsize(), 1048576);
    EXPECT_EQ(pool.toString(), "DataTexturePool {\n"
                               "    total memory size : 1 MB - 1048576 bytes\n"
                               "    total file size : 0.00195312 mb - 2048 bytes\n"
                               "    numTextures = 2\n"
                               "    logo = Texture {file='new.png',id=0',size='512,512',"
                               "bpp='32'dimtype=GL_TEXTURE_2D }\n"
                               "}\n");
}

TEST(DataTexturePool, FindsTextureNamesByKeyAndByFile) {
    GLuint ids[2];
    glGenTextures(2, ids);
    DataTexturePool pool;
    pool.addTexture("b", "stone.png", ids[0]);
    pool.addTexture("a", "sand.png", ids[1]);
    EXPECT_TRUE(pool.exist("a"));
    EXPECT_EQ(pool.getTexture("c"), nullptr);
    EXPECT_EQ(pool.getTextureIDbyAlias("b"), ids[0]);
    EXPECT_EQ(pool.getTextureIDbyFilename("sand.png"), ids[1]);
    EXPECT_EQ(pool.getTextureIDbyFilename("missing.png"), 0u);
    EXPECT_EQ(pool.getTexVector(), (std::vector<unsigned int>{ids[1], ids[0]})); // key order
    EXPECT_EQ(pool.getFilemap().at("stone.png"), "b");
}

TEST(DataTexturePool, DisposalSaysSoAndDeletesEveryTexture) {
    GLuint ids[2];
    glGenTextures(2, ids);
    for (GLuint id : ids) {
        glBindTexture(GL_TEXTURE_2D, id);
    }
    glBindTexture(GL_TEXTURE_2D, 0);
    {
        DataTexturePool pool;
        pool.addTexture("first", "a.png", ids[0]);
        pool.addTexture("first", "b.png", ids[1]); // replaced, still owned
        testing::internal::CaptureStdout();
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "[Dispose texturePool]\n");
    EXPECT_FALSE(glIsTexture(ids[0]));
    EXPECT_FALSE(glIsTexture(ids[1]));
}
