#include <algorithm>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <zoltTools/zoMD5.h>

namespace
{

// The digest, in hexadecimal, of a text that is added in portions.
std::string DigestOf(const std::string& aText, size_t aPortion)
{
    zoMD5Context theContext;
    zoMD5_Init(&theContext);
    zoMD5_Add(&theContext, nullptr, 0);
    for (size_t i = 0; i < aText.size(); i += aPortion)
        zoMD5_Add(&theContext, aText.data() + i, std::min(aPortion, aText.size() - i));
    uint8 theDigest[16];
    zoMD5_Get(&theContext, theDigest);
    char theText[2 * sizeof(theDigest) + 1];
    for (size_t i = 0; i < sizeof(theDigest); ++i)
        snprintf(theText + 2 * i, 3, "%02x", static_cast<unsigned>(theDigest[i]));
    return theText;
}

} // namespace

// The suite of RFC 1321, and its lengths around a block's end however they are cut.
TEST(zoMD5Test, DigestsTextsHoweverTheyAreCut)
{
    const std::string theLetters = "abcdefghijklmnopqrstuvwxyz";
    EXPECT_EQ("d41d8cd98f00b204e9800998ecf8427e", DigestOf("", 1));
    EXPECT_EQ("0cc175b9c0f1b6a831c399e269772661", DigestOf("a", 1));
    EXPECT_EQ("900150983cd24fb0d6963f7d28e17f72", DigestOf("abc", 3));
    EXPECT_EQ("f96b697d7cb7938d525a2f31aaf161d0", DigestOf("message digest", 20));
    EXPECT_EQ("c3fcd3d76192e4007dfb496cca67e13b", DigestOf(theLetters, 26));
    EXPECT_EQ("d174ab98d277d9f5a5611c2c9f419d9f",
              DigestOf("ABCDEFGHIJKLMNOPQRSTUVWXYZ" + theLetters + "0123456789", 62));
    EXPECT_EQ("57edf4a22be3c955ac49da2e2107b67a",
              DigestOf("12345678901234567890123456789012345678901234567890123456789012345678901234567890", 80));
    EXPECT_EQ("7707d6ae4e027c70eea2a935c2296f21", DigestOf(std::string(1000000, 'a'), 999));
    for (size_t theLength = 50; theLength < 140; ++theLength)
    {
        const std::string theText(theLength, 'x');
        for (const size_t thePortion : { 1u, 63u, 64u, 65u })
            EXPECT_EQ(DigestOf(theText, theLength), DigestOf(theText, thePortion)) << theLength << '/' << thePortion;
    }
}
