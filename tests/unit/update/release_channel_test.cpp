#include "update/release_channel.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/sample_metadata.h"

namespace vorthmere::update {
namespace {

using testing::sampleDigest;

TEST(ReleaseChannel, InventoryIsNamedAfterItsPackage) {
    EXPECT_EQ(channelAddress("KVN-1.zip"), std::string(kDownloadBaseUrl) + "KVN-1.zip");
    EXPECT_EQ(inventoryAddress("KVN-1.zip"), "KVN-1.zip.files");
}

TEST(ReleaseChannel, ObjectIsNamedByADigestAlone) {
    EXPECT_EQ(objectName(sampleDigest('a')), "KVN-file-" + sampleDigest('a') + ".bin");
    EXPECT_TRUE(isObjectName(objectName(sampleDigest('a'))));
    for (const std::string& name :
         {sampleDigest('a'), "KVN-file-" + sampleDigest('a'), sampleDigest('a') + ".bin", objectName(""),
          objectName(sampleDigest('g')), objectName(sampleDigest('a') + "0"), objectName(sampleDigest('a')) + "x"})
        EXPECT_FALSE(isObjectName(name)) << name;
}

}  // namespace
}  // namespace vorthmere::update
