#include "Support/Owned.h"
#include "Support/Texts.h"
#include <gtest/gtest.h>
#include <sstream>
#include <zoOS/zoSocket.h>
#include <zoltTools/zoMemory.h>
#include <zoltTools/zoURI.h>

namespace
{

struct URI : Owned<zoURI, zoURI_Delete>
{
    explicit URI(const std::string& aText) : Owned(zoURI_NewFromEscapedStr(aText.c_str())) {}
    std::string Text() const { return Taken(zoURI_GetStr(mRecord)); }
};

std::string Shown(const char* aText) { return aText ? '<' + std::string(aText) + '>' : "-"; }

std::string Components(const zoURI* aURI)
{
    if (!aURI) { return "none"; }
    return Shown(aURI->mScheme) + Shown(aURI->mUserInfo) + Shown(aURI->mHostName) + std::to_string(aURI->mPort) +
           Shown(aURI->mPath) + Shown(aURI->mQuery) + Shown(aURI->mFragment);
}

std::string Combined(const char* aBase, const char* aReference) { return Taken(zoURI_S_Combine(aBase, aReference)); }

} // namespace

TEST(zoURITest, KeepsItsTextWhileUntouched)
{
    static const char* const kCases[][2] = {
        { "http://192.168.1.20:8080/a/b.mp3?x=1&y#f", "<http>-<192.168.1.20>8080</a/b.mp3><x=1&y><f>" },
        { "http://user:pw@host/", "<http><user:pw><host>0</>--" },
        { "http://a@b@c:1/", "<http><a@b><c>1</>--" }, // the host that is asked is the last
        { "http://[fe80::1]:80/x", "<http>-<[fe80::1]>80</x>--" },
        { "http://h?a?b/c#d?e#f", "<http>-<h>0<><a?b/c><d?e#f>" },
        { "http://h:0080", "<http>-<h>80<>--" }, // both ports come back as written
        { "http://h:65535?#", "<http>-<h>65535<><><>" },
        { "file:///a b\xC3\xA4%20%zz", "<file>-<>0</a b\xC3\xA4%20%zz>--" },
        { "http://@:1", "<http><><>1<>--" },
        { "mailto:a@b:c", "<mailto>--0<a@b:c>--" },
        { "a+b-c.1:x", "<a+b-c.1>--0<x>--" },
        { "1a:b", "---0<1a:b>--" }, // no scheme begins with a digit
        { "a b:c", "---0<a b:c>--" },
        { "", "---0<>--" },
    };
    for (const auto& [theText, theComponents] : kCases)
    {
        const URI theURI(theText);
        EXPECT_EQ(theComponents, Components(theURI)) << theText;
        EXPECT_EQ(theText, theURI.Text());
    }
    for (const char* theText : { "http://h:65536/", "http://h:4294967376/", "http://h:80a/", "http://h:-1/",
                                 "http://::1/", "http://[::1", "http://[::1/]", "http://[::1]x/" })
        EXPECT_EQ("none", Components(URI(theText))) << theText;

    // Each cut of a text with everything is parsed, or has a port or a bracket cut off.
    const std::string theWhole = "http://u:p@[::1]:80/a/../b?c=d&e#f%20";
    for (size_t theSize = 0; theSize < theWhole.size(); ++theSize)
    {
        const URI theURI(theWhole.substr(0, theSize));
        EXPECT_EQ(theSize < 10 || theSize > 15 || theSize == 11, theURI.mRecord != nullptr) << theSize;
        if (theURI) { EXPECT_EQ(theWhole.substr(0, theSize), theURI.Text()); }
    }
}

TEST(zoURITest, FieldsMayBeReplaced)
{
    const URI theURI("http://h:080/p");
    theURI->mPort = 8080;
    theURI->mPath = zoStrdup("/q"); // the one before lies inside the URI's own block
    EXPECT_EQ("http://h:8080/q", theURI.Text());
    theURI->mPort = 0;
    EXPECT_EQ("http://h/q", theURI.Text());
    EXPECT_EQ("", Taken(zoURI_GetStr(nullptr)));
    EXPECT_EQ(nullptr, zoURI_GetQueryPart(nullptr, "lock"));
}

TEST(zoURITest, TellsTheAddressOfAnIPv4Host)
{
    std::istringstream theHosts("192.168.1.20 c0a80114  0.0.0.0 0  000.00.0.000 0  0.0.0.1 1");
    for (std::string theHost, theAddress; theHosts >> theHost >> theAddress;)
    {
        const std::string theText = "http://" + theHost + ":80/";
        const uint32 theExpected = zoSocket_htonl(static_cast<uint32>(std::stoul(theAddress, nullptr, 16)));
        EXPECT_EQ(theExpected, zoURI_GetHostIP(URI(theText))) << theHost;
        EXPECT_EQ(theExpected, zoURI_S_GetHostIP(theText.data(), theText.size() - 1)) << theHost;
    }
    std::istringstream theOtherHosts("1.2.3 0.0.0.00000 0.0.0 0 host 255.255.255.255 [::1] 00000000000000000000");
    for (std::string theHost; theOtherHosts >> theHost;)
        EXPECT_EQ(UINT32_MAX, zoURI_GetHostIP(URI("http://" + theHost + "/0.0.0.0"))) << theHost;
    EXPECT_EQ(UINT32_MAX, zoURI_GetHostIP(URI("file:///0")));
    EXPECT_EQ(UINT32_MAX, zoURI_GetHostIP(URI("/0")));
    EXPECT_EQ(UINT32_MAX, zoURI_S_GetHostIP("http://1.2.3.4:65536/", SIZE_MAX)); // no URI, no host
    EXPECT_EQ(UINT32_MAX, zoURI_S_GetHostIP(nullptr, 0));
}

TEST(zoURITest, EscapesWhatMayNotStay)
{
    static const char* const kCases[][2] = {
        { "http://h/a b?c d#e f", "http://h/a%20b?c%20d#e%20f" },
        { "http://h/%41%zz%4?%", "http://h/%41%25zz%254?%25" }, // valid escapes stay
        { "http://h/\xC3\xBC\x7F\"<>\\^`{|}", "http://h/%C3%BC%7F%22%3C%3E%5C%5E%60%7B%7C%7D" },
        { "http://h/[a]:@!$&'()*+,;=~?[/?:@]#[/?]", "http://h/%5Ba%5D:@!$&'()*+,;=~?%5B/?:@%5D#%5B/?%5D" },
        { "http://[fe80::1%eth0]/", "http://[fe80::1%25eth0]/" },
        { "http://a@b:c@h_1~ x:1/", "http://a%40b:c@h_1~%20x:1/" },
    };
    for (const auto& [theText, theEscaped] : kCases)
    {
        const URI theURI(theText);
        zoURI_Escape(theURI);
        EXPECT_EQ(theEscaped, theURI.Text()) << theText;
        zoURI_Escape(theURI); // what is escaped stays
        EXPECT_EQ(theEscaped, theURI.Text()) << theText;
    }
}

TEST(zoURITest, ReplacesAndFindsQueryArguments)
{
    static const char* const kCases[][4] = {
        // query, its value of "lock", with "lock" set to "a+/=", to ""
        { "?lock", "", "?lock=a%2B%2F%3D", "?lock=" },
        { "?x=1&lock=a%20b+c&y", "a b+c", "?x=1&lock=a%2B%2F%3D&y", "?x=1&lock=&y" },
        { "?%6Coc%6b=1&lock=2&z&lock", "1", "?lock=a%2B%2F%3D&z", "?lock=&z" },
        { "?lock=a=b%zz%00", "a=b%zz%00", "?lock=a%2B%2F%3D", "?lock=" },
        { "", nullptr, "?lock=a%2B%2F%3D", "?lock=" },
        { "?a%2&&b=lock&", nullptr, "?a%2&&b=lock&lock=a%2B%2F%3D", "?a%2&&b=lock&lock=" },
        { "?Lock=1&loc=2&locks=3&=lock", nullptr, "?Lock=1&loc=2&locks=3&=lock&lock=a%2B%2F%3D",
          "?Lock=1&loc=2&locks=3&=lock&lock=" },
    };
    for (const auto& [theQuery, theValue, theFilled, theEmptied] : kCases)
    {
        const URI theURI(std::string("http://h/p") + theQuery + "#f");
        EXPECT_EQ(theValue ? theValue : "(null)", Taken(zoURI_GetQueryPart(theURI, "lock"))) << theQuery;
        zoURI_AddQueryPart(theURI, "lock", "a+/=");
        EXPECT_EQ(std::string("http://h/p") + theFilled + "#f", theURI.Text());
        EXPECT_EQ("a+/=", Taken(zoURI_GetQueryPart(theURI, "lock"))) << theQuery;
        zoURI_AddQueryPart(theURI, "lock", "");
        EXPECT_EQ(std::string("http://h/p") + theEmptied + "#f", theURI.Text());
    }
    const URI theURI("http://h/?a=b");
    zoURI_AddQueryPart(theURI, "a", theURI->mQuery); // from the text that it replaces
    zoURI_AddQueryPart(theURI, "n&=\xC3\xA4", "%41~");
    EXPECT_EQ("http://h/?a=a%3Db&n%26%3D%C3%A4=%2541~", theURI.Text());
    EXPECT_EQ("%41~", Taken(zoURI_GetQueryPart(theURI, "n&=\xC3\xA4")));
}

// RFC 3986, section 5.4.
TEST(zoURITest, CombinesTheExamplesOfTheStandard)
{
    std::istringstream theExamples(
        "g:h g:h  g http://a/b/c/g  ./g http://a/b/c/g  g/ http://a/b/c/g/  /g http://a/g  //g http://g "
        "?y http://a/b/c/d;p?y  g?y http://a/b/c/g?y  #s http://a/b/c/d;p?q#s  g#s http://a/b/c/g#s "
        "g?y#s http://a/b/c/g?y#s  ;x http://a/b/c/;x  g;x http://a/b/c/g;x  g;x?y#s http://a/b/c/g;x?y#s "
        ". http://a/b/c/  ./ http://a/b/c/  .. http://a/b/  ../ http://a/b/  ../g http://a/b/g  ../.. http://a/ "
        "../../ http://a/  ../../g http://a/g  ../../../g http://a/g  ../../../../g http://a/g  /./g http://a/g "
        "/../g http://a/g  g. http://a/b/c/g.  .g http://a/b/c/.g  g.. http://a/b/c/g..  ..g http://a/b/c/..g "
        "./../g http://a/b/g  ./g/. http://a/b/c/g/  g/./h http://a/b/c/g/h  g/../h http://a/b/c/h "
        "g;x=1/./y http://a/b/c/g;x=1/y  g;x=1/../y http://a/b/c/y  g?y/./x http://a/b/c/g?y/./x "
        "g?y/../x http://a/b/c/g?y/../x  g#s/./x http://a/b/c/g#s/./x  g#s/../x http://a/b/c/g#s/../x http:g http:g");
    int theCount = 0;
    for (std::string theReference, theExpected; theExamples >> theReference >> theExpected; ++theCount)
        EXPECT_EQ(theExpected, Combined("http://a/b/c/d;p?q", theReference.c_str())) << theReference;
    EXPECT_EQ(41, theCount);
    EXPECT_EQ("http://a/b/c/d;p?q", Combined("http://a/b/c/d;p?q", ""));
}

TEST(zoURITest, CombinesAtTheEdges)
{
    static const char* const kCases[][3] = {
        { "http://u@h:080", "x", "http://u@h:080/x" }, // a "/" after the host
        { "http://h?q", "", "http://h?q" },
        { "http://h/a/../b?q", "?y", "http://h/a/../b?y" }, // the base's path as it is
        { "http://h/a/../b", "c", "http://h/c" },
        { "http://h/a//b", "../c", "http://h/a/c" },
        { "http://h/", "//g:8/../x/.", "http://g:8/x/" },
        { "http://h/", "a:../x", "a:x" },
        { "a:/b", ".//c", "a:/.//c" }, // "//c" would be a host
        { "a:b", "d", "a:d" },
        { "a:b/c", "..", "a:/" },
        { "", "../x", "../x" }, // no base
        { "/a/b", "c", "c" },
        { "http://h:x/", "../c", "../c" },
        { "http://h/", "//h:x/../c", "//h:x/../c" },
        { nullptr, "x", "x" },
        { "http://h/a", nullptr, "http://h/a" },
    };
    for (const auto& [theBase, theReference, theExpected] : kCases)
        EXPECT_EQ(theExpected, Combined(theBase, theReference))
            << (theBase ? theBase : "(null)") << " + " << (theReference ? theReference : "(null)");
}
