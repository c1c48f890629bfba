#include "Sha256.h"

#include <gtest/gtest.h>

#include <string>

TEST(Sha256, HasTheSumsThatThePublishersOfTheMethodGive)
{
    EXPECT_EQ(Sha256(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(Sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(Sha256("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(Sha256(std::string(1000000, 'a')), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Sha256, DiffersForEveryLengthAroundABlock)
{
    // Sums of so many zero bytes, from another program.
    EXPECT_EQ(Sha256(std::string(55, '\0')), "02779466cdec163811d078815c633f21901413081449002f24aa3e80f0b88ef7");
    EXPECT_EQ(Sha256(std::string(56, '\0')), "d4817aa5497628e7c77e6b606107042bbba3130888c5f47a375e6179be789fbb");
    EXPECT_EQ(Sha256(std::string(64, '\0')), "f5a5fd42d16a20302798ef6ed309979b43003d2320d9f0e8ea9831a92759fb4b");
}
