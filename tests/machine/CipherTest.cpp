#include "machine/Cipher.h"

#include <gtest/gtest.h>

namespace machine {
namespace {

TEST(Cipher, WhatIsEncipheredIsNotReadableAndComesBack) {
    for (const char* plain : {"", "a", "Passw0rd!", "corp\\admin 1, 2; 3=\"x\"", "zZ9"}) {
        SCOPED_TRACE(plain);
        EXPECT_EQ(Decipher(Encipher(plain)), plain);
        if (*plain != 0) {
            EXPECT_NE(Encipher(plain), plain);
        }
    }
}

TEST(Cipher, FollowsTheTransformationThatExampleFilesAreWrittenWith) {
    EXPECT_EQ(Encipher("Secret-19"), "46-greprF");
    EXPECT_EQ(Encipher("joiner"), "eravbw");
}

}  // namespace
}  // namespace machine
