#include "Support/Catchers.h"
#include "Support/Config.h"
#include "Support/Texts.h"
#include <UPnP/Utilities/UPnPGroupCapabilities.h>
#include <gtest/gtest.h>
#include <utility>
#include <zoltTools/zoMemory.h>

namespace
{

typedef Owned<UPnPGroupInfo, UPnPGroupInfo_Delete> Group;
typedef Owned<UPnPGroupCapabilities, UPnPGroupCapabilities_Delete> Capabilities;

Group ReadGroup(const std::string& aText) { return UPnPGroupInfo_New("MultiRoom", aText.c_str()); }
Group LoadGroup(zoConfigFile* aConfig) { return UPnPGroupInfo_NewConfig(aConfig, "MultiRoom"); }

std::string Shown(const char* aText) { return aText ? aText : "-"; }

std::string Shown(const char* aName, const char* aUDN, const zoCustomHashTable* aTable)
{
    std::string theText = Shown(aName) + "|" + Shown(aUDN);
    for (size_t i = 0; const char* theKey = zoCustomHashTable_GetKeyAtIndex(aTable, i); ++i)
        theText += std::string(" ") + theKey + "=" + zoCustomHashTable_Get(aTable, theKey);
    return theText;
}

// The whole group in one line.
std::string Shown(const Group& g)
{
    if (!g) { return "NULL"; }
    std::string theText = Shown(g->mGroupFriendlyName, g->mGroupUDN, g->mGroupMetaData) + "; " +
                          Shown(g->mMasterGroupedFriendlyName, g->mMasterGroupedUDN, g->mMasterMetaData);
    for (size_t i = 0; const UPnPGroupSlave* s = UPnPGroupInfo_GetSlaveAt(g, i); ++i)
        theText += "; " + Shown(s->mGroupedFriendlyName, s->mGroupedUDN, s->mMetaData);
    return theText;
}

// A group with slaves of these grouped UDNs, one character each.
Group GroupOf(const std::string& aSlaves, const std::string& aFriendlyName = "G")
{
    Group g = UPnPGroupInfo_NewEx("MultiRoom");
    zoStrReplace(&g->mGroupFriendlyName, aFriendlyName.c_str());
    zoStrReplace(&g->mGroupUDN, "g");
    zoStrReplace(&g->mMasterGroupedFriendlyName, "M");
    zoStrReplace(&g->mMasterGroupedUDN, "m");
    for (const char theUDN : aSlaves)
        UPnPGroupInfo_AddSlave(g, std::string(1, theUDN).c_str(), "S", "own");
    return g;
}

void SetInAll(UPnPGroupInfo* aGroup, const char* aName, const char* aValue)
{
    for (const char* theMember : { "", "m", "s" })
        UPnPGroupInfo_SetMetaData(aGroup, *theMember ? theMember : nullptr, aName, aValue);
}

std::string MetaData(UPnPGroupInfo* aGroup, const char* aMember, size_t anIndex)
{
    const char* theName = "untouched";
    const char* theValue = "untouched";
    UPnPGroupInfo_FetchMetaDataAt(aGroup, aMember, anIndex, &theName, &theValue);
    return Shown(theName) + "=" + Shown(theValue);
}

// One message of the family, "" for none.
std::string Warning(const std::string& aText)
{
    const std::string kSource = LoggedFrom("Libs/Internal/UPnP/Utilities/UPnPGroupCapabilities.cpp");
    return aText.empty() ? "" : "2/147 " + kSource + aText + "\n";
}

std::string Capability(const std::string& aText)
{
    return "<groupCapabilities><groupCapability " + aText + "/></groupCapabilities>";
}

} // namespace

TEST(UPnPGroupCapabilitiesTest, ReadsTheFirstCapability)
{
    static const char kBad[] = "UPnPGroupCapabilities: Unable to parse XML for 'groupCapabilities' in a device";
    static const char kInvalid[] = "UPnPGroupCapabilities: Found an invalid 'groupCapability' description in a device";
    const std::string kWhole = "capability='MultiRoom' groupedUDN='uuid:1' UDN='uuid:2' ";
    const std::tuple<std::string, const char*, const char*> kCases[] = {
        // text, shown (name, grouped UDN, mode, active capability), logged
        { Capability(kWhole + "mode='master'"), "MultiRoom|uuid:1|2|MultiRoom", "" },
        { Capability(kWhole + "mode='slave'"), "MultiRoom|uuid:1|1|MultiRoom", "" },
        { Capability(kWhole + "mode='Master'"), "MultiRoom|uuid:1|0|", "" },
        { Capability(kWhole + "MODE='master'"), "MultiRoom|uuid:1|2|MultiRoom", "" },
        { Capability(kWhole + "mode='master' mode='masters'"), "MultiRoom|uuid:1|0|", "" },
        { Capability(kWhole + "x:mode='slave' CAPABILITY='a&amp;b' udn=''"), "a&amp;b|uuid:1|0|", "" },
        { Capability("capability='' groupedUDN='' UDN=''"), "||0|", "" },
        { "<x:GROUPCAPABILITIES><y><groupcapability " + kWhole + "></groupcapability></y></x:GROUPCAPABILITIES>",
          "MultiRoom|uuid:1|0|", "" },
        { Capability("capability='a' groupedUDN='b'/><groupCapability " + kWhole), "", kInvalid },
        { Capability("capability='a' UDN='b'"), "", kInvalid },
        { Capability("groupedUDN='a' UDN='b'"), "", kInvalid },
        { "<groupCapabilities/><groupCapability " + kWhole + "/>", "", "" }, // after the root
        { "<a>" + Capability(kWhole) + "</a>", "", "" },
        { Capability(kWhole) + "</a>", "", kBad },
    };
    for (const auto& [theText, theShown, theLogged] : kCases)
    {
        const LogCatcher theLog;
        const Capabilities theSet = UPnPGroupCapabilities_New(theText.c_str());
        const UPnPGroupCapability* c = UPnPGroupCapabilities_GetAt(theSet, 0);
        const std::string theMode = c ? "|" + std::to_string(c->mMode) + "|" : "";
        EXPECT_EQ(theShown, (c ? Shown(c->mName, c->mGroupedUDN, nullptr) : "") + theMode +
                                UPnPGroupCapabilities_GetActive(theSet))
            << theText;
        EXPECT_EQ(Warning(theLogged), theLog.mText) << theText;
    }
}

TEST(UPnPGroupCapabilitiesTest, FindsCapabilitiesByName)
{
    LogCatcher theLog(ZOLOGLEVEL_INFO);
    const Capabilities theSet = UPnPGroupCapabilities_New(Capability("capability='a' groupedUDN='b' UDN='c'").c_str());
    EXPECT_EQ(UPnPGroupCapabilities_GetAt(theSet, 0), UPnPGroupCapabilities_GetGroup(theSet, "a"));
    EXPECT_EQ(nullptr, UPnPGroupCapabilities_GetAt(theSet, 1));
    EXPECT_EQ(1, UPnPGroupCapabilities_Has(theSet, "a"));
    EXPECT_EQ(0, UPnPGroupCapabilities_Has(theSet, "A") + UPnPGroupCapabilities_Has(theSet, nullptr));
    EXPECT_STREQ("", UPnPGroupCapabilities_GetActive(nullptr));
    EXPECT_EQ(0u, UPnPGroupCapabilities_GetCount(Capabilities(UPnPGroupCapabilities_New(nullptr))));
    EXPECT_EQ(nullptr, UPnPGroupCapabilities_GetGroup(nullptr, "a"));
    EXPECT_EQ("", theLog.mText);
    EXPECT_EQ(nullptr, UPnPGroupCapabilities_GetGroup(theSet, "A"));
    EXPECT_EQ(nullptr, UPnPGroupCapabilities_GetGroup(theSet, nullptr));
    _zoLog_Level = ZOLOGLEVEL_WARNING; // lets errors through, and no more
    EXPECT_EQ(nullptr, UPnPGroupCapabilities_GetGroup(theSet, "B"));
    EXPECT_EQ(Warning("UPnPGroupCapabilities: Group for capability 'A' non found") +
                  Warning("UPnPGroupCapabilities: Group for capability 'NULL' non found"),
              theLog.mText);
}

TEST(UPnPGroupInfoTest, ReadsXML)
{
    static const char kBadGroup[] = "UPnPGroupSlave: Invalid group description in XML";
    static const char kBadSlave[] = "UPnPGroupSlave: Invalid slave description in XML attributes";
    const std::string kStart = "<groupInfo friendlyName='G' UDN='g'>";
    const std::string kMaster = "<master groupedFriendlyName='M' groupedUDN='m'/>";
    const std::string kSlave = "<slave groupedFriendlyName='S' groupedUDN='s'/>";
    const std::tuple<std::string, const char*, const char*> kCases[] = {
        { kStart + "<a><slave groupedFriendlyName='T' groupedUDN='s'><b>" + kMaster + kSlave +
              "</b></slave></a><master groupedUDN='n'/></groupInfo>" + kMaster + kSlave,
          "G|g; M|m; T|s; S|s", "" }, // at any depth, the first master, slaves of one UDN, nothing after the root
        { "<x:GROUPINFO friendlyname='G' udn='g'><y:SLAVE groupedfriendlyname='S' GroupedUDN='s'/><MASTER "
          "GROUPEDfriendlyName='M' groupedudn='m'/></x:GROUPINFO>",
          "G|g; M|m; S|s", "" },
        { "<groupInfo friendlyName='a&amp;b' a='1' UDN='x' Volume='a&lt;b&amp;c' a='&#233;' UDN='g&gt;' "
          "groupedUDN='&quot;'><master groupedFriendlyName='M' groupedUDN='m' UDN='u' xmlns:x='n' x:groupedUDN='y'/>"
          "<slave friendlyName='' groupedFriendlyName='' groupedUDN='' groupedFriendlyName='S'/></groupInfo>",
          "a&amp;b|g&gt; a=\xC3\xA9 Volume=a<b&c groupedUDN=\"; "
          "M|m UDN=u xmlns:x=n x:groupedUDN=y; S| friendlyName=",
          "" },
        { kStart + "</groupInfo>" + kMaster, "NULL", kBadGroup },
        { kStart + "<master groupedFriendlyName='M'/>" + kMaster + "</groupInfo>", "NULL", kBadGroup },
        { kStart + "<master groupedFriendlyName='M' groupedUDN=''/></groupInfo>", "NULL", kBadGroup },
        { "<groupInfo UDN='g'>" + kMaster + "</groupInfo>", "NULL", kBadGroup },
        { kStart + kMaster + kSlave + "<slave groupedFriendlyName='S'/><slave/></groupInfo>", "NULL", kBadSlave },
        { kStart + kMaster + "<slave groupedUDN='s'/></groupInfo>", "NULL", kBadSlave },
        { "<a>" + kStart + kMaster + "</groupInfo></a>", "NULL", "" },
    };
    for (const auto& [theText, theShown, theLogged] : kCases)
    {
        const LogCatcher theLog;
        const Group g = ReadGroup(theText);
        EXPECT_EQ(theShown, Shown(g)) << theText;
        EXPECT_EQ(Warning(theLogged), theLog.mText) << theText;
        if (g) { EXPECT_EQ("1 MultiRoom", std::to_string(g->mfHasMasterSet) + " " + g->mCapability); }
    }
    EXPECT_EQ(nullptr, UPnPGroupInfo_New("MultiRoom", nullptr));
    const LogCatcher theLog;
    const std::string theWhole = std::get<0>(kCases[0]);
    for (size_t theSize = 0; theSize < theWhole.size(); ++theSize)
        ReadGroup(theWhole.substr(0, theSize));
}

TEST(UPnPGroupInfoTest, WritesXML)
{
    const Group g = GroupOf("", "Living room");
    EXPECT_EQ("<groupInfo friendlyName=\"Living room\" UDN=\"g\">\n"
              "    <master groupedFriendlyName=\"M\" groupedUDN=\"m\"/>\n</groupInfo>",
              Taken(UPnPGroupInfo_GetXML(g)));
    UPnPGroupInfo_AddSlave(g, "s", "S", "own");
    UPnPGroupInfo_AddSlave(g, "t", "T", nullptr);
    UPnPGroupInfo_SetMetaData(g, nullptr, "volume", "20");
    UPnPGroupInfo_SetMetaData(g, nullptr, "mute", "");
    UPnPGroupInfo_SetMetaData(g, "m", "chars", "a<b>&c\"'");
    UPnPGroupInfo_SetMetaData(g, "t", "x:y", "1");
    EXPECT_EQ("<groupInfo friendlyName=\"Living room\" UDN=\"g\" volume=\"20\" mute=\"\">\n"
              "    <master groupedFriendlyName=\"M\" groupedUDN=\"m\" chars=\"a&lt;b&gt;&amp;c&quot;&apos;\"/>\n"
              "    <slave groupedFriendlyName=\"S\" groupedUDN=\"s\"/>\n"
              "    <slave groupedFriendlyName=\"T\" groupedUDN=\"t\" x:y=\"1\"/>\n</groupInfo>",
              Taken(UPnPGroupInfo_GetXML(g)));
    EXPECT_EQ(" volume=\"20\" mute=\"\"", Taken(UPnPGroupMetaData_GetXML(g->mGroupMetaData)));
    EXPECT_EQ("", Taken(UPnPGroupMetaData_GetXML(UPnPGroupInfo_GetSlaveAt(g, 0)->mMetaData)));
    for (std::string theValue; theValue.size() < 70; theValue += '&') // an end of the text at each place
    {
        UPnPGroupInfo_SetMetaData(g, "s", "n", theValue.c_str());
        const std::string theText = Taken(UPnPGroupMetaData_GetXML(UPnPGroupInfo_GetSlaveAt(g, 0)->mMetaData));
        EXPECT_EQ(5 + 5 * theValue.size(), theText.size());
    }
    zoStrReplace(&UPnPGroupInfo_GetSlaveAt(g, 1)->mGroupedUDN, "");
    EXPECT_EQ(nullptr, UPnPGroupInfo_GetXML(g));
    EXPECT_EQ(nullptr, UPnPGroupInfo_GetXML(nullptr));
}

// XML to model to configuration file, saved and loaded, to model to XML, for a text in each place by turns.
TEST(UPnPGroupInfoTest, ComesBackAsFarAsTheFormatsCarryIt)
{
    // What XML carries: f as friendly name, n as name and v as value of metadata; N: a name that comes back when
    // stored.
    static const std::pair<const char*, const char*> kCases[] = {
        { " two blanks ", "fvN" },
        { "a=b", "fv" },
        { "\"quoted\"", "vN" },
        { "it's/>", "fvN" },
        { "<![CDATA[&amp;]]>&#10;", "fvN" },
        { "line\r\nend\t\n", "fvN" },
        { "[Section]\\n#;%s", "fvN" },
        { "\xE6\x97\xA5\x01\xFF", "fvN" },
        { "\xE6\x97\xA5-2.x", "fnvN" },
        { "uDN", "fvN" }, // is read as the group's UDN
        { "GROUPEDudn", "fvN" },
    };
    for (const auto& [theSpecial, theCarried] : kCases)
    {
        for (const char thePlace : { 'f', 'n', 'v' })
        {
            const LogCatcher theLog;
            const char* theFriendlyName = thePlace == 'f' ? theSpecial : "S";
            const Group g = GroupOf("s", theFriendlyName);
            zoStrReplace(&UPnPGroupInfo_GetSlaveAt(g, 0)->mGroupedFriendlyName, theFriendlyName);
            SetInAll(g, thePlace == 'n' ? theSpecial : "name", thePlace == 'v' ? theSpecial : "value");
            const std::string theXML = Taken(UPnPGroupInfo_GetXML(g));
            EXPECT_EQ(strchr(theCarried, thePlace) != nullptr, Shown(g) == Shown(ReadGroup(theXML))) << theXML;

            const ConfigFile theConfig = NewConfig("");
            UPnPGroupInfo_Store(g, theConfig);
            const std::string theText = Taken(zoConfigFile_GetText(theConfig, nullptr));
            const std::string theLoadedXML = Taken(UPnPGroupInfo_GetXML(LoadGroup(NewConfig(theText))));
            EXPECT_EQ(thePlace != 'n' || strchr(theCarried, 'N'), theXML == theLoadedXML) << theText;
        }
    }
}

TEST(UPnPGroupInfoTest, StoresWithoutRemovingOtherKeys)
{
    const Group g = GroupOf("rst");
    SetInAll(g, "a", "1");
    SetInAll(g, "b", "2");
    zoStrReplace(&g->mGroupFriendlyName, nullptr);
    const ConfigFile theConfig = NewConfig("[MultiRoom]\nGroup.FriendlyName=old\nother=key\n");
    UPnPGroupInfo_Store(g, theConfig);
    EXPECT_EQ("[MultiRoom]\nother=key\nGroup.UDN=g\nGroup.MetaData0=a=1\nGroup.MetaData1=b=2\n"
              "Master.GroupedFriendlyName=M\nMaster.GroupedUDN=m\nMaster.MetaData0=a=1\nMaster.MetaData1=b=2\n"
              "Slave0.GroupedFriendlyName=S\nSlave0.GroupedUDN=r\nSlave1.GroupedFriendlyName=S\nSlave1.GroupedUDN=s\n"
              "Slave1.MetaData0=a=1\nSlave1.MetaData1=b=2\nSlave2.GroupedFriendlyName=S\nSlave2.GroupedUDN=t\n",
              Taken(zoConfigFile_GetText(theConfig, nullptr)));
    UPnPGroupInfo_Store(GroupOf("s"), theConfig); // what the larger group has left is read back
    EXPECT_EQ("G|g a=1 b=2; M|m a=1 b=2; S|s; S|s a=1 b=2; S|t", Shown(LoadGroup(theConfig)));
}

TEST(UPnPGroupInfoTest, LoadsUpToTheFirstGap)
{
    static const std::pair<const char*, const char*> kCases[] = {
        { "", "G|g; M|m" },
        { "Group.MetaData0=a=b=c\nMaster.MetaData0=d=\n", "G|g a=b=c; M|m d=" },
        { "Group.MetaData0=abc\nGroup.MetaData1==x\nGroup.MetaData2=a=1\nGroup.MetaData3=a=2\nGroup.MetaData5=b=3\n",
          "G|g a=2; M|m" },
        { "Slave0.GroupedFriendlyName=S\nSlave0.GroupedUDN=s\nSlave0.MetaData0=a=1\nSlave1.GroupedFriendlyName=T\n"
          "Slave2.GroupedFriendlyName=U\nSlave2.GroupedUDN=u\n",
          "G|g; M|m; S|s a=1" },
        { "Slave00.GroupedFriendlyName=S\nSlave00.GroupedUDN=s\n", "G|g; M|m" },
        { "Group.UDN=\nSlave0.GroupedFriendlyName=S\nSlave0.GroupedUDN=s\n", "G|; M|m" },
    };
    for (const auto& [theKeys, theShown] : kCases)
    {
        const Group g = LoadGroup(NewConfig("[MultiRoom]\nGroup.UDN=g\nGroup.FriendlyName=G\n"
                                            "Master.GroupedFriendlyName=M\nMaster.GroupedUDN=m\n" +
                                            std::string(theKeys)));
        EXPECT_EQ(theShown, Shown(g)) << theKeys;
        EXPECT_EQ(0, g->mfHasMasterSet);
    }
    EXPECT_EQ("|; |", Shown(LoadGroup(NewConfig("[Multiroom]\nGroup.UDN=g\n"))));
}

TEST(UPnPGroupInfoTest, DuplicatesAndCompares)
{
    const Group g = GroupOf("rst");
    SetInAll(g, "a", "1");
    g->mfHasMasterSet = 1;
    const Group d = UPnPGroupInfo_Duplicate(Group(UPnPGroupInfo_Duplicate(g)));
    EXPECT_EQ("G|-" + Shown(g).substr(3), Shown(d));
    EXPECT_EQ("g MultiRoom 1",
              std::string(d->mOriginalGroupUDN) + " " + d->mCapability + " " + std::to_string(d->mfHasMasterSet));
    EXPECT_EQ("own-", Shown(UPnPGroupInfo_GetSlaveAt(g, 0)->mUDN) + Shown(UPnPGroupInfo_GetSlaveAt(d, 0)->mUDN));
    EXPECT_EQ(0, UPnPGroupInfo_IsValid(d) + UPnPGroupInfo_SameAs(d, d)); // without a UDN
    zoStrReplace(&d->mGroupUDN, "g");
    zoStrReplace(&d->mCapability, "Other");
    EXPECT_EQ(1, UPnPGroupInfo_SameAs(g, d));

    UPnPGroupSlave* theLast = UPnPGroupInfo_GetSlaveAt(d, 2);
    for (char** theField : { &d->mGroupUDN, &d->mGroupFriendlyName, &d->mMasterGroupedUDN,
                             &d->mMasterGroupedFriendlyName, &theLast->mGroupedUDN, &theLast->mGroupedFriendlyName })
    {
        const std::string theValue = *theField;
        for (const char* theOther : { "other", "", static_cast<const char*>(nullptr) })
        {
            zoStrReplace(theField, theOther);
            EXPECT_EQ(zoStrEmpty(theOther) ? 0 : 1, UPnPGroupInfo_IsValid(d)) << theValue;
            EXPECT_EQ(0, UPnPGroupInfo_SameAs(g, d)) << theValue;
        }
        zoStrReplace(theField, theValue.c_str());
    }
    for (const char* theMember : { static_cast<const char*>(nullptr), "m", "s" })
    {
        UPnPGroupInfo_SetMetaData(d, theMember, "b", "");
        EXPECT_EQ(0, UPnPGroupInfo_SameAs(g, d) + UPnPGroupInfo_SameAs(d, g));
        UPnPGroupInfo_SetMetaData(g, theMember, "c", "");
        EXPECT_EQ(0, UPnPGroupInfo_SameAs(g, d));
        UPnPGroupInfo_RemoveMetaData(g, theMember, "c");
        UPnPGroupInfo_SetMetaData(g, theMember, "b", "");
        EXPECT_EQ(1, UPnPGroupInfo_SameAs(g, d));
    }
}

TEST(UPnPGroupInfoTest, ComparesSlavesInAnyOrder)
{
    for (const char* theOther : { "abcd", "dcba", "bcda", "dabc", "acdb" })
        EXPECT_EQ(1, UPnPGroupInfo_SameAs(GroupOf("abcd"), GroupOf(theOther))) << theOther;
    for (const char* theOther : { "abce", "wxyz", "abc", "abcde", "" })
        EXPECT_EQ(0, UPnPGroupInfo_SameAs(GroupOf("abcd"), GroupOf(theOther))) << theOther;
    const Group theTwins = GroupOf("ac"); // one slave may stand for two
    zoStrReplace(&UPnPGroupInfo_GetSlaveAt(theTwins, 1)->mGroupedUDN, "a");
    EXPECT_EQ(1, UPnPGroupInfo_SameAs(theTwins, GroupOf("ab")));
    EXPECT_EQ(0, UPnPGroupInfo_SameAs(GroupOf("ab"), theTwins));

    const Group g = GroupOf("abc"), h = GroupOf("cba"); // tables have an order of their own, too
    for (const char* theKey : { "k", "l", "m" })
        UPnPGroupInfo_SetMetaData(g, "b", theKey, theKey);
    for (const char* theKey : { "m", "k", "l" })
        UPnPGroupInfo_SetMetaData(h, "b", theKey, theKey);
    EXPECT_EQ(1, UPnPGroupInfo_SameAs(g, h));
    UPnPGroupInfo_SetMetaData(h, "b", "l", "other");
    EXPECT_EQ(0, UPnPGroupInfo_SameAs(g, h) + UPnPGroupInfo_SameAs(h, g));
}

TEST(UPnPGroupInfoTest, FindsMembersByGroupedUDN)
{
    const Group theTwins = GroupOf("acb");
    zoStrReplace(&UPnPGroupInfo_GetSlaveAt(theTwins, 2)->mGroupedUDN, "a");
    zoStrReplace(&UPnPGroupInfo_GetSlaveAt(theTwins, 2)->mGroupedFriendlyName, "second");
    UPnPGroupInfo_RemoveSlave(theTwins, "c"); // the second moves to where the last search ended
    EXPECT_EQ("S", Taken(UPnPGroupInfo_FetchGroupedInfo(theTwins, "a")));

    const Group g = GroupOf("st");
    SetInAll(g, "a", "1");
    const UPnPGroupSlave* s = UPnPGroupInfo_GetSlaveAt(g, 0);
    UPnPGroupInfo_AddSlave(g, s->mGroupedUDN, s->mUDN, s->mGroupedFriendlyName); // replaces the one with these texts
    EXPECT_EQ("G|g a=1; M|m a=1; S|t; own|s", Shown(g));
    EXPECT_EQ(1u, UPnPGroupInfo_GetSlaveIndexByGroupedUDN(g, "s"));
    for (const char* theUDN : { "own", "S", "", static_cast<const char*>(nullptr) })
    {
        EXPECT_EQ(static_cast<size_t>(-1), UPnPGroupInfo_GetSlaveIndexByGroupedUDN(g, theUDN));
        EXPECT_EQ(0, UPnPGroupInfo_HasDevice(g, theUDN) + UPnPGroupInfo_RemoveSlave(g, theUDN));
        EXPECT_EQ(nullptr, UPnPGroupInfo_FetchGroupedInfo(g, theUDN));
    }
    EXPECT_EQ(2, UPnPGroupInfo_HasDevice(g, "m") + UPnPGroupInfo_HasDevice(g, "s"));
    EXPECT_EQ("Mown", Taken(UPnPGroupInfo_FetchGroupedInfo(g, "m")) + Taken(UPnPGroupInfo_FetchGroupedInfo(g, "s")));
    EXPECT_EQ(1, UPnPGroupInfo_RemoveSlave(g, UPnPGroupInfo_GetSlaveAt(g, 0)->mGroupedUDN));
    EXPECT_EQ(nullptr, UPnPGroupInfo_GetSlaveAt(g, 1));

    UPnPGroupInfo_AddSlave(g, nullptr, nullptr, nullptr);
    for (const char* theMaster : { "m", "", static_cast<const char*>(nullptr) })
    {
        zoStrReplace(&g->mMasterGroupedUDN, theMaster);
        const Owned<zoArray_t, zoArray_Delete> theUDNs = UPnPGroupInfo_GetGroupedUDNs(g);
        const std::string theFirst = static_cast<const char*>(zoArray_At(theUDNs, 0));
        const size_t theLast = zoArray_GetCount(theUDNs) - 1;
        EXPECT_EQ(zoStrEmpty(theMaster) ? "s1" : "m2", theFirst + std::to_string(theLast));
        EXPECT_STREQ("", static_cast<const char*>(zoArray_At(theUDNs, theLast)));
    }
    EXPECT_EQ(0, UPnPGroupInfo_HasDevice(g, "m") + UPnPGroupInfo_HasDevice(g, nullptr));
}

TEST(UPnPGroupInfoTest, SetsAndFetchesMetaDataOfEachMember)
{
    const Group g = GroupOf("s");
    static const std::tuple<const char*, const char*, const char*, int, size_t> kCases[] = {
        // member, name, value, result, count afterwards
        { nullptr, "a", "1", 1, 1 }, { nullptr, "b", "", 1, 2 },      { nullptr, "c", nullptr, 0, 2 },
        { nullptr, "", "1", 0, 2 },  { nullptr, nullptr, "1", 0, 2 }, { nullptr, "a", "2", 1, 2 },
        { "m", "a", "3", 1, 1 },     { "m", "b", nullptr, 0, 1 },     { "s", "a", "4", 1, 1 },
        { "s", "b", nullptr, 1, 1 }, { "s", "", "1", 1, 1 },          { "own", "a", "5", 0, 0 },
    };
    for (const auto& [theMember, theMetaName, theValue, theResult, theCount] : kCases)
    {
        EXPECT_EQ(theResult, UPnPGroupInfo_SetMetaData(g, theMember, theMetaName, theValue));
        EXPECT_EQ(theCount, UPnPGroupInfo_GetMetaDataCount(g, theMember));
    }
    EXPECT_EQ("a=2 b= a=4", MetaData(g, nullptr, 0) + " " + MetaData(g, nullptr, 1) + " " + MetaData(g, "s", 0));
    UPnPGroupInfo_FetchMetaDataAt(g, "s", 0, nullptr, nullptr);

    const AssertionCatcher theCatcher;
    EXPECT_EQ("-=-", MetaData(g, "own", 0));
    const std::string kSource = "Libs/Internal/UPnP/Utilities/UPnPGroupCapabilities.cpp: ";
    EXPECT_EQ(kSource + "theIndex != (size_t) -1", std::exchange(theCatcher.Text(), ""));
    EXPECT_EQ("-=-", MetaData(nullptr, nullptr, 0));
    EXPECT_EQ("", theCatcher.Text());
    EXPECT_EQ("-=-", MetaData(g, "s", 1));
    EXPECT_EQ(kSource + "anIndex < zoCustomHashTable_GetTupleCount(aMetaDataHashTable)", theCatcher.Text());

    for (const char* theName : { "", "x", static_cast<const char*>(nullptr) })
        UPnPGroupInfo_RemoveMetaData(g, nullptr, theName);
    const char* theKey = zoCustomHashTable_GetKeyAtIndex(g->mGroupMetaData, 0); // the entry's own texts
    UPnPGroupInfo_SetMetaData(g, nullptr, theKey, zoCustomHashTable_Get(g->mGroupMetaData, theKey));
    EXPECT_EQ("G|g a=2 b=; M|m a=3; S|s a=4", Shown(g));
    UPnPGroupInfo_RemoveMetaData(g, nullptr, theKey);
    EXPECT_EQ("b=", MetaData(g, nullptr, 0));
}

TEST(UPnPGroupInfoTest, TakesNullForAGroup)
{
    EXPECT_EQ(0u, UPnPGroupInfo_GetSlaveCount(nullptr) + UPnPGroupInfo_GetMetaDataCount(nullptr, nullptr));
    EXPECT_EQ(0u, zoArray_GetCount(Owned<zoArray_t, zoArray_Delete>(UPnPGroupInfo_GetGroupedUDNs(nullptr))));
    EXPECT_FALSE(UPnPGroupInfo_SameAs(nullptr, nullptr) || UPnPGroupInfo_HasDevice(nullptr, "s") ||
                 UPnPGroupInfo_RemoveSlave(nullptr, "s") || UPnPGroupInfo_SetMetaData(nullptr, nullptr, "a", "b") ||
                 UPnPGroupInfo_Duplicate(nullptr) || UPnPGroupInfo_FetchGroupedInfo(nullptr, "s"));
    UPnPGroupInfo_AddSlave(nullptr, "s", "S", nullptr);
    UPnPGroupInfo_RemoveMetaData(nullptr, nullptr, "a");
    UPnPGroupInfo_Store(nullptr, nullptr);
    EXPECT_EQ("|; |", Shown(LoadGroup(nullptr)));
}
