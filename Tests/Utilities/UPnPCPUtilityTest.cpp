#include <UPnP/Utilities/UPnPCPUtility.h>
#include <gtest/gtest.h>
#include <string>

TEST(UPnPCPUtilityTest, RecognisesLockedURIs)
{
    static const std::pair<const char*, bool> kCases[] = {
        { "http://h/a?lock=", true },    { "http://h/a?x=1&lock", true },
        { "/a?%6cock=&y=2", true },      { "http://h/a?lock=abc", false },
        { "http://h/a?Lock=", false },   { "http://h/a", false },
        { "http://h/lock=", false },     { "http://h/a#?lock=", false },
        { "http://h:x/a?lock=", false }, { "", false },
    };
    for (const auto& [theURI, fLocked] : kCases)
        EXPECT_EQ(fLocked, UPnPCPUtility::IsURIParentalLocked(theURI)) << theURI;
}

TEST(UPnPCPUtilityTest, UnlocksURIs)
{
    // The digests are those of "printf '%s' /path1234 | openssl md5 -binary | base64".
    static const char* const kCases[][3] = {
        { "http://h/film.mp4?lock=", "1234", "http://h/film.mp4?lock=EW4Z21T48XTHf4r55asoSA%3D%3D" },
        { "https://h:8080/film.mp4?a=b&lock=old&c=d&lock=#f", "1234",
          "https://h:8080/film.mp4?a=b&lock=EW4Z21T48XTHf4r55asoSA%3D%3D&c=d#f" },
        { "http://h/film.mp4?lock", "", "http://h/film.mp4?lock=YBo1spXTvxaJ6w0KtQx5pw%3D%3D" },
        { "http://h/a%20b c?lock=", "1234",
          "http://h/a%20b%20c?lock=4G0K5bGaT25SloiC%2BKErzA%3D%3D" },               // hashed as written
        { "http://h?lock=", "1234", "http://h?lock=gdyb21LQTcIANtvYMT7QVQ%3D%3D" }, // no path
        { "http://h/a b?x=\"", "1234", "http://h/a b?x=\"" },                       // no lock: as it is
        { "http://h:x/a?lock=", "1234", "http://h:x/a?lock=" },
        { "", "1234", "" },
    };
    for (const auto& [theURI, thePinCode, theUnlocked] : kCases)
        EXPECT_STREQ(theUnlocked, UPnPCPUtility::GetURIUnlocked(theURI, thePinCode).c_str()) << theURI;
}
