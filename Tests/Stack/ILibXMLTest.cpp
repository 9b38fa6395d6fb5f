#include "Support/Texts.h"
#include <UPnP/Stack/ILibXML.h>
#include <cstring>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace
{

std::string Text(const char* aBegin, int aLength) { return { aBegin ? aBegin : "", static_cast<size_t>(aLength) }; }

// One line for a document: its tags as they are linked, e.g. "a[x=1] (b:c) " for <a x="1"><b:c/></a>, or the error.
// The reader is given memory of this many pointers, 0 for none.
std::string Outline(std::string_view aText, size_t aCount)
{
    char* theText = strndup(aText.data(), aText.size());
    std::vector<void*> theMemory(aCount);
    ILibXMLNode* theNodes =
        aCount > 0 ? ILibParseXMLWithMemory(theText, 0, aText.size(), theMemory.data(), aCount * sizeof(void*))
                   : ILibParseXML(theText, 0, aText.size());
    const int theError = ILibProcessXMLNodeList(theNodes);
    std::string theOutline = theError ? "error " + std::to_string(theError) : "";
    for (ILibXMLNode* theNode = theError ? nullptr : theNodes; theNode; theNode = theNode->Next)
    {
        if (!theNode->StartTag)
        {
            theOutline += ")";
            EXPECT_EQ(theNode, theNode->StartingTag->ClosingTag);
            continue;
        }
        if (theNode->Peer) { EXPECT_EQ(theNode->Parent, theNode->Peer->Parent); }
        theOutline += "(" + Text(theNode->NSTag, theNode->NSLength) + (theNode->NSTag ? ":" : "") +
                      Text(theNode->Name, theNode->NameLength);
        ILibXMLAttribute* theAttributes = ILibGetXMLAttributes(theNode);
        for (ILibXMLAttribute* theAttribute = theAttributes; theAttribute; theAttribute = theAttribute->Next)
        {
            theOutline += " " + Text(theAttribute->Prefix, theAttribute->PrefixLength) +
                          (theAttribute->Prefix ? ":" : "") + Text(theAttribute->Name, theAttribute->NameLength) + "=" +
                          Text(theAttribute->Value, theAttribute->ValueLength);
        }
        ILibDestructXMLAttributeList(theAttributes);
        char* theInner = nullptr;
        const int theLength = ILibReadInnerXML(theNode, &theInner);
        if (theNode->Next == theNode->ClosingTag && theLength > 0) { theOutline += "|" + Text(theInner, theLength); }
    }
    ILibDestructXMLNodeList(theNodes);
    free(theText);
    return theOutline;
}

} // namespace

TEST(ILibXMLTest, ReadsWhatServersSend)
{
    static const char* const kCases[][2] = {
        { "<a><b>x</b><b>y</b></a>", "(a(b|x)(b|y))" },
        { "<d:a  x='1'\r\n\tn:y = \"2>\" ><c/></d:a >", "(d:a x=1 n:y=2>(c))" },
        { "<a x=\"1\"y='2'/>", "(a x=1 y=2)" },       // nothing between attributes
        { "<a x='\"' y=\"'\"></a>", "(a x=\" y=')" }, // the other quote inside
        { "\xEF\xBB\xBF<?xml version=\"1.0\"?>\n<!-- <b> --><a/>\n", "(a)" },
        { "<!DOCTYPE a [ <!ENTITY e \"]>'\"> <!-- ' --> <?p ' ?> ] ><a>&e;</a>", "(a|&e;)" },
        { "<a><![CDATA[<b>]] ]]]>]]></a>", "(a|<![CDATA[<b>]] ]]]>]]>)" },
        { "<a>1 & 2</a>", "(a|1 & 2)" },
        { "<a:b:c :x='' y:=''/>", "(a:b:c :x= y:=)" }, // only a first colon inside splits
        { "<_-.9 \xC3\xA9:1=''/>", "(_-.9 \xC3\xA9:1=)" },
        { "<ab></ab><a/>", "(ab)(a)" },
        { "no tag", "" },
    };
    const size_t kMemories[] = { 0, 1, 15, 40, 512 };
    for (const auto& [theText, theOutline] : kCases)
    {
        for (const size_t theCount : kMemories)
            EXPECT_EQ(theOutline, Outline(theText, theCount)) << theText;
    }
    static const std::pair<const char*, std::vector<const char*>> kErrors[] = {
        { "error -2", { "<a><b></a></b>", "<a></A>", "<a></aa>" } },
        { "error -1", { "</a>", "<a/></b>" } },
        { "error -3",
          { "<a>", "<a></a><", "<", "<a></a", "<a x></a>", "<a x=1></a>", "<a x='1></a>", "<a / ></a>", "< a></a>",
            "<1a></1a>", "<-a/>", "<.a/>", "<a x='' 1y=''/>", "<a [=\"x\"/>", "<a&b></a&b>", "<a x;y=''/>",
            "<a><!-->--</a>", "<a><![CDATA[]></a>", "<!DOCTYPE a [ <!ENTITY ><a/>" } },
    };
    for (const auto& [theError, theTexts] : kErrors)
    {
        for (const char* theText : theTexts)
        {
            for (const size_t theCount : kMemories)
                EXPECT_EQ(theError, Outline(theText, theCount)) << theText;
        }
    }
}

TEST(ILibXMLTest, ResolvesReferences)
{
    static const char* const kCases[][2] = {
        { "a&amp;lt;b &lt;&gt;&quot;&apos;", "a&lt;b <>\"'" },
        { "&#65;&#x42;&#x6a;&#x4A;&#0000000000000000068;&#X41;", "ABjJD&#X41;" },
        { "&#xE9;&#x20AC;&#x1F600;&#x10FFFF;", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF" },
        { "&#0;&#xD800;&#x110000;&#99999999999;&#;&#x;&#1", "&#0;&#xD800;&#x110000;&#99999999999;&#;&#x;&#1" },
        { "&AMP;&nbsp;&amp &;&", "&AMP;&nbsp;&amp &;&" },
        { "&quo;&quox;&lt &ampx;&apo&quot", "&quo;&quox;&lt &ampx;&apo&quot" }, // almost
        { "<![CDATA[a&amp;b]]>&amp;<![CDATA[]]]]><![CDATA[>]]>", "a&amp;b&]]>" },
        { "<b>&lt;<![CDATA[x", "<b><<![CDATA[x" },
        { "<![CDATA[ <![CDATA[ ]]> ]]>", " <![CDATA[  ]]>" },
        { "", "" },
    };
    for (const auto& [theText, theResolved] : kCases)
    {
        char* theCopy = strdup(theText);
        EXPECT_EQ(strlen(theResolved), static_cast<size_t>(ILibInPlaceXmlUnEscape(theCopy))) << theText;
        EXPECT_EQ(theResolved, Taken(theCopy));
    }
}

TEST(ILibXMLTest, TellsWhatIsWrongAndWhere)
{
    const std::string theLong(64, 'n');
    static const struct
    {
        std::string mText;
        size_t mOffset;
        std::string mReason;
    } kCases[] = {
        { "<a></b>", 3, "end tag </b> where </a> was expected" },
        { "<a/></a>", 4, "end tag </a> without a start tag" },
        { "x<a><n:b>x</n:b><c>", 16, "the element <c> is not closed" },
        { "<a>5 < 6</a>", 6, "a name was expected after \"<\"" },
        { "<a></>", 5, "a name was expected after \"</\"" },
        { "<a></a b>", 7, "\">\" was expected after \"</a\"" },
        { "<a b></a>", 4, "\"=\" was expected after the attribute b" },
        { "<a n:b=1></a>", 7, "the value of the attribute n:b is not in quotes" },
        { "<a b='1></a>", 5, "the value of the attribute b has no closing quote" },
        { "<a b='1' <c/></a>", 9, "an attribute, \">\" or \"/>\" was expected" },
        { "<a / ></a>", 4, "\">\" was expected after \"/\"" },
        { "<a/><!-- -- ->", 4, "a comment does not end" },
        { "<?a><a/>", 0, "a processing instruction does not end" },
        { "<a><![CDATA[>]]</a>", 3, "a CDATA section does not end" },
        { "<!DOCTYPE a [<!ENTITY b '>'><a/>", 0, "a declaration does not end" },
        { "<a></a", 3, "the text ends inside a tag" },
        { "<" + theLong + "\xC3\xA9></a>", 68, "end tag </a> where </" + theLong + "> was expected" },
        { "<" + theLong.substr(1) + "\xC3\xA9></a>", 67,
          "end tag </a> where </" + theLong.substr(1) + "> was expected" },
    };
    for (const auto& [theText, theOffset, theReason] : kCases)
    {
        size_t theFound = 99;
        EXPECT_EQ(theReason, Taken(ILibFindXMLError(theText.data(), theText.size(), &theFound))) << theText;
        EXPECT_EQ(theOffset, theFound) << theText;
    }
}

// The text with a byte at each place changed or cut off: the reader refuses what an error is found in, and nothing
// else.
TEST(ILibXMLTest, FindsAnErrorInWhatIsRefusedAlone)
{
    size_t theCounts[2] = {};
    const auto theCheck = [&theCounts](const std::string& aText)
    {
        size_t theOffset = 0;
        char* theReason = ILibFindXMLError(aText.data(), aText.size(), &theOffset);
        const bool fIsRefused = Outline(aText, 0).substr(0, 5) == "error";
        EXPECT_EQ(fIsRefused, theReason != nullptr) << aText;
        EXPECT_LE(theOffset, aText.size());
        ++theCounts[fIsRefused];
        free(theReason);
    };
    const std::string theDocument =
        "<?x y?><!DOCTYPE a [<!-- '> --><!ENTITY b \">\">]><a n:b = 'c' d=\">\"><!-- - --><e/>"
        "<![CDATA[<]]></a >\n<:f g='' />";
    for (size_t i = 0; i <= theDocument.size(); ++i)
    {
        theCheck(theDocument.substr(0, i));
        theCheck(theDocument.substr(i));
        for (const char theByte : std::string("<>/='\"!-]? a\x80"))
            theCheck(std::string(theDocument).replace(i, 1, 1, theByte));
    }
    EXPECT_GT(theCounts[0], 500u);
    EXPECT_GT(theCounts[1], 500u);
}
