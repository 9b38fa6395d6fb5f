#include "Support/Catchers.h"
#include "Support/ChildProcess.h"
#include "Support/Config.h"
#include "Support/Texts.h"
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>
#include <zoltTools/zoConfigFile.h>

namespace
{

#ifdef SYS_fchown32
const int kFchown32 = SYS_fchown32; // on 32 bit
#else
const int kFchown32 = SYS_fchown;
#endif

struct Config : ConfigFile
{
    explicit Config(const std::string& aText) : ConfigFile(NewConfig(aText)) {}
    std::string Text() const
    {
        size_t theLength = 0;
        char* theText = zoConfigFile_GetText(mRecord, &theLength);
        std::string theCopy(theText, theLength);
        free(theText);
        return theCopy;
    }
    std::string Get(const char* aSection, const char* aKey) const
    {
        return zoConfigFile_GetString(mRecord, aSection, aKey, "(none)");
    }
    void Set(const char* aSection, const char* aKey, const char* aValue)
    {
        zoConfigFile_SetString(mRecord, aSection, aKey, aValue);
    }
};

// A folder of its own, gone at the end.
struct ScratchFolder
{
    ScratchFolder() { mPath = mkdtemp(mTemplate); }
    ~ScratchFolder() { std::filesystem::remove_all(mPath); }
    ScratchFolder& operator=(ScratchFolder&&) = delete;
    std::string Read(const std::string& aName) const { return ReadFile(mPath + "/" + aName); }

    char mTemplate[32] = "/tmp/zoConfigFileTest.XXXXXX";
    std::string mPath;
};

bool SaveKey(const std::string& aPath, const char* aValue)
{
    const ConfigFile theFile = zoConfigFile_New(aPath.c_str());
    zoConfigFile_SetString(theFile, "s", "k", aValue);
    return zoConfigFile_Save(theFile) != 0;
}

std::ptrdiff_t CountFiles(const std::string& aFolder)
{
    return std::distance(std::filesystem::directory_iterator(aFolder), {});
}

unsigned ModeOf(const std::string& aPath)
{
    struct stat theStatus = {};
    stat(aPath.c_str(), &theStatus);
    return theStatus.st_mode & 07777;
}

// Makes the process a user of its own, whose calls for owners, modes and locks of files fail.
bool BecomeHelpless()
{
    struct sock_filter theFilter[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(struct seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_fchmod, 4, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_flock, 3, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_fchown, 2, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, kFchown32, 1, 0),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM),
    };
    const struct sock_fprog theProgram = { sizeof(theFilter) / sizeof(theFilter[0]), theFilter };
    umask(022);
    return (geteuid() != 0 || setuid(65534) == 0) && prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &theProgram) == 0;
}

} // namespace

TEST(zoConfigFileTest, ReadsWhatPeopleWrite)
{
    const Config theConfig("\xEF\xBB\xBFtop = 1\r\n"
                           "# key=comment\n ; key=comment\n[a]\n  spaced \t=\t two words \t\nempty=\n=nameless\n"
                           "twice=1\ntwice=2\nquoted=\"x\" # no comment\npath=C:\\dir\\new\\x41\\\n"
                           "no equal sign\n[broken\n[ b ] ; remark\nk=v\n[a]\nmore=3\nesc=\\sa\\\\\\t\\n\\r\\s");
    const char* const kValues[][3] = {
        { "", "top", "1" },
        { "a", "spaced", "two words" },
        { "a", "empty", "" },
        { "a", "", "nameless" },
        { "a", "twice", "2" },
        { "a", "quoted", "\"x\" # no comment" },
        { "a", "path", "C:\\dir\new\\x41\\" },
        { "b", "k", "v" },
        { "a", "more", "3" },
        { "a", "esc", " a\\\t\n\r " },
        { "a", "key", "(none)" },
        { "A", "more", "(none)" },
        { "a", "More", "(none)" },
        { "broken", "k", "(none)" },
    };
    for (const auto& [theSection, theKey, theValue] : kValues)
        EXPECT_EQ(theValue, theConfig.Get(theSection, theKey)) << theKey;
    EXPECT_EQ(3u, zoConfigFile_GetSectionCount(theConfig));
    EXPECT_STREQ("b", zoConfigFile_GetSectionAt(theConfig, 2));
    EXPECT_EQ(nullptr, zoConfigFile_GetSectionAt(theConfig, 3));
    EXPECT_EQ(8u, zoConfigFile_GetKeyCount(theConfig, "a"));
    EXPECT_STREQ("more", zoConfigFile_GetKeyAt(theConfig, "a", 6));

    const std::string theNUL("a=1\nb=2\0c=3\nd=4", 15);
    EXPECT_EQ("(none)", Config(theNUL).Get("", "b"));
    EXPECT_EQ("4", Config(theNUL).Get("", "d"));
    EXPECT_EQ(theNUL, Config(theNUL).Text());
    EXPECT_EQ(nullptr, zoConfigFile_GetString(theConfig, nullptr, "k", nullptr));
    EXPECT_EQ(nullptr, zoConfigFile_GetString(nullptr, "a", "more", nullptr));
}

TEST(zoConfigFileTest, ReadsNumbersAndOptions)
{
    const std::tuple<std::vector<const char*>, uint32, uint16, uint8, int32, int> kCases[] = {
        // values, as numbers of 32, 16 and 8 bits, with a sign, as an option; 7 is the default
        { { "0" }, 0, 0, 0, 0, 0 },
        { { "1" }, 1, 1, 1, 1, 1 },
        { { "0x10" }, 16, 16, 16, 16, 7 },
        { { "0XfF" }, 255, 255, 255, 255, 7 },
        { { "256" }, 256, 256, 7, 256, 7 },
        { { "65536" }, 65536, 7, 7, 65536, 7 },
        { { "2147483648" }, 2147483648u, 7, 7, 7, 7 },
        { { "4294967295" }, 4294967295u, 7, 7, 7, 7 },
        { { "-1" }, 7, 7, 7, -1, 7 },
        { { "-2147483648" }, 7, 7, 7, INT32_MIN, 7 },
        { { "-0x10" }, 7, 7, 7, -16, 7 },
        { { "", "FALSE", "no", "Off" }, 7, 7, 7, 7, 0 },
        { { "True", "YES", "on" }, 7, 7, 7, 7, 1 },
        { { "4294967296", "-2147483649", "12x", "+1", "0x", "--1", "1 2", "onn", "o", nullptr }, 7, 7, 7, 7, 7 },
    };
    Config theConfig("");
    for (const auto& [theValues, theUInt32, theUInt16, theUInt8, theInt32, fOption] : kCases)
    {
        for (const char* theValue : theValues)
        {
            SCOPED_TRACE(theValue ? theValue : "NULL");
            theConfig.Set("s", "k", theValue);
            EXPECT_EQ(theUInt32, zoConfigFile_GetUInt32(theConfig, "s", "k", 7));
            EXPECT_EQ(theUInt16, zoConfigFile_GetUInt16(theConfig, "s", "k", 7));
            EXPECT_EQ(theUInt8, zoConfigFile_GetUInt8(theConfig, "s", "k", 7));
            EXPECT_EQ(theInt32, zoConfigFile_GetInt32(theConfig, "s", "k", 7));
            EXPECT_EQ(fOption, zoConfigFile_OptionIsSet(theConfig, "s", "k", 7));
        }
    }
}

TEST(zoConfigFileTest, KeepsWhatItDoesNotChange)
{
    const std::string kText =
        "# top\r\n\r\n[a]\r\n  k  =  1  \r\n; about the next\r\nk = 2\r\nl=3\r\n\r\n[b]\r\nwhat?\r\nm=4";
    Config theConfig(kText);
    EXPECT_EQ(kText, theConfig.Text());
    theConfig.Set("a", "l", "3"); // what it is already
    EXPECT_EQ(kText, theConfig.Text());
    theConfig.Set("a", "k", "new");
    theConfig.Set("a", "n", "5");
    theConfig.Set("b", "o", "6");
    theConfig.Set("c", "p", "7");
    theConfig.Set("", "q", "8");
    EXPECT_EQ(
        "q=8\r\n# top\r\n\r\n[a]\r\n  k  =  1  \r\n; about the next\r\nk = new\r\nl=3\r\nn=5\r\n\r\n[b]\r\nwhat?\r\n"
        "m=4\r\no=6\r\n\r\n[c]\r\np=7\r\n",
        theConfig.Text());
    theConfig.Set("a", "k", nullptr);
    theConfig.Set("a", "n", nullptr);
    theConfig.Set("a", "l", nullptr);
    theConfig.Set("", "q", nullptr);
    theConfig.Set("x", "y", nullptr);
    EXPECT_EQ(3u, zoConfigFile_GetSectionCount(theConfig));
    theConfig.Set("a", "z", zoConfigFile_GetString(theConfig, "b", "o", nullptr));
    theConfig.Set("b", "o", zoConfigFile_GetString(theConfig, "b", "o", nullptr));
    EXPECT_EQ("# top\r\n\r\n[a]\r\n; about the next\r\nz=6\r\n\r\n[b]\r\nwhat?\r\nm=4\r\no=6\r\n\r\n[c]\r\np=7\r\n",
              theConfig.Text());
}

TEST(zoConfigFileTest, ANewSectionComesAfterAnEmptyLine)
{
    const std::pair<std::string, const char*> kCases[] = {
        { "", "" },          { "\n", "" },        { "[a]", "\n\n" }, { "[a]\n\n", "" }, { "[a]\r\n\r\n", "" },
        { "#\r\n", "\r\n" }, { "k=v\n\n\n", "" }, { "\r", "\n" },
    };
    for (const auto& [theText, theBetween] : kCases)
    {
        Config theConfig(theText);
        theConfig.Set("b", "k", "v");
        const std::string theLineEnd = theText.find("\r\n") != theText.npos ? "\r\n" : "\n";
        EXPECT_EQ(theText + theBetween + "[b]" + theLineEnd + "k=v" + theLineEnd, theConfig.Text());
    }
}

TEST(zoConfigFileTest, AKeyThatBecomesTheFirstKeepsItsByteOrderMark)
{
    Config theConfig("k=1\n\xEF\xBB\xBFk=2\n");
    theConfig.Set("", "k", nullptr);
    const Config theReloaded(theConfig.Text());
    EXPECT_EQ("(none)", theReloaded.Get("", "k"));
    EXPECT_EQ("2", theReloaded.Get("", "\xEF\xBB\xBFk"));
    EXPECT_EQ(theConfig.Text(), theReloaded.Text());
}

TEST(zoConfigFileTest, AnyNameAndValueSurvives)
{
    const std::string kTexts[] = { "",      " ",           "\t",   " a ",    "a b", "\\",           "\\n",
                                   "\\\\s", "a=b",         "=",    "#c",     ";c",  "[x]",          "]",
                                   "a\nb",  "\r",          "\r\n", "x\\x3D", "%s",  "\xEF\xBB\xBF", "\xFF\x01\x7F",
                                   "\"q\"", "caf\xC3\xA9", "a\\ " };
    Config theConfig("[z]\nz=\r"); // half a line end at the end, which the next line must not complete to a value
    for (const std::string& theSection : kTexts)
    {
        for (const std::string& theText : kTexts)
            theConfig.Set(theSection.c_str(), theText.c_str(), (theText + theSection).c_str());
    }
    const Config theReloaded(theConfig.Text());
    for (const std::string& theSection : kTexts)
    {
        for (const std::string& theText : kTexts)
            EXPECT_EQ(theText + theSection, theReloaded.Get(theSection.c_str(), theText.c_str())) << theConfig.Text();
    }
    EXPECT_EQ("", theConfig.Get("z", "z"));
    EXPECT_EQ("", theReloaded.Get("z", "z"));
    EXPECT_EQ(theConfig.Text(), theReloaded.Text());
}

TEST(zoConfigFileTest, SavesInPlace)
{
    const ScratchFolder theFolder;
    const std::string thePath = theFolder.mPath + "/device.conf";
    const std::string theLink = theFolder.mPath + "/link.conf";
    ASSERT_EQ(0, symlink("late/../chain.conf", theLink.c_str()));
    EXPECT_FALSE((LogCatcher(), SaveKey(theLink, "0"))) << "a folder is missing";
    std::filesystem::create_directory(theFolder.mPath + "/late");
    ASSERT_EQ(0, symlink(thePath.c_str(), (theFolder.mPath + "/chain.conf").c_str()));
    EXPECT_TRUE(SaveKey(theLink, "1")) << "to a link to a file that is not there yet";
    EXPECT_EQ("[s]\nk=1\n", theFolder.Read("device.conf"));
    ASSERT_EQ(0, chmod(thePath.c_str(), 0606));
    std::ofstream(thePath + ".new") << "a neighbour's";
    EXPECT_TRUE(SaveKey(theLink, "2"));
    EXPECT_EQ("[s]\nk=2\n", theFolder.Read("device.conf"));
    EXPECT_TRUE(std::filesystem::is_symlink(theLink));
    EXPECT_EQ("a neighbour's", theFolder.Read("device.conf.new"));
    EXPECT_EQ(0606u, ModeOf(thePath));
    EXPECT_TRUE(SaveKey(theFolder.mPath + "/" + Repeated("\xC3\xA4", 127), "1")) << "no name is longer";
}

TEST(zoConfigFileTest, RemovesWhatKilledSaversLeft)
{
    const ScratchFolder theFolder;
    const std::string thePrefix = theFolder.mPath + "/.device.conf.zoConfigFile-0123456789ABCDE";
    const std::string theHeld = thePrefix + "E";
    for (const char* theDigit : { "", "f", "5", "6" })
        std::ofstream(thePrefix + theDigit) << "left, or not ours";
    std::filesystem::create_directory(thePrefix + "1");
    ASSERT_EQ(0, symlink("device.conf", (thePrefix + "2").c_str()));
    ASSERT_EQ(0, mkfifo((thePrefix + "3").c_str(), 0600)); // nobody reads from it
    const int theHolder = open(theHeld.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(0, flock(theHolder, LOCK_EX));
    EXPECT_TRUE(SaveKey(theFolder.mPath + "/device.conf", "1"));
    EXPECT_TRUE(std::filesystem::exists(theHeld)) << "its writer is still there";
    close(theHolder);
    EXPECT_TRUE(SaveKey(theFolder.mPath + "/device.conf", "2"));
    for (const char* theDigit : { "5", "6", "E" })
        EXPECT_FALSE(std::filesystem::exists(thePrefix + theDigit)) << theDigit;
    for (const char* theDigit : { "", "f", "1", "2", "3" }) // not ours: too short, in lower case, no file
        EXPECT_TRUE(std::filesystem::exists(thePrefix + theDigit)) << theDigit;
}

// Two processes that save the same file over and over are killed at any moment.
TEST(zoConfigFileTest, IsWholeWheneverSaversAreKilled)
{
    const ScratchFolder theFolder;
    const std::string thePath = theFolder.mPath + "/device.conf";
    const std::string theValues[] = { std::string(50000, 'a'), std::string(70000, 'b') };
    int theCounts[] = { 0, 0 };
    bool fWasLeft = false;
    for (int i = 0; i < 50; ++i)
    {
        std::filesystem::remove(thePath);
        pid_t theSavers[2];
        for (pid_t& theSaver : theSavers)
        {
            theSaver = fork();
            if (theSaver == 0)
            {
                for (int j = i; SaveKey(thePath, theValues[j % 2].c_str()); ++j) {}
                _exit(1);
            }
        }
        for (int k = 0; k < 10000 && !std::filesystem::exists(thePath); ++k)
            usleep(1000); // until one has saved
        usleep(1000u * (static_cast<unsigned>(i) % 20));
        for (const pid_t theSaver : theSavers)
        {
            int theStatus = 0;
            kill(theSaver, SIGKILL);
            waitpid(theSaver, &theStatus, 0);
            ASSERT_TRUE(WIFSIGNALED(theStatus)) << "a save failed";
        }
        const std::string theText = theFolder.Read("device.conf");
        const int theIndex = theText.size() > 60000;
        ASSERT_TRUE(theText == "[s]\nk=" + theValues[theIndex] + "\n")
            << "neither value, but " << theText.size() << " bytes";
        theCounts[theIndex] += 1;
        fWasLeft = fWasLeft || CountFiles(theFolder.mPath) > 1;
    }
    EXPECT_TRUE(theCounts[0] > 0 && theCounts[1] > 0 && fWasLeft) << "nothing was killed while it saved";
    EXPECT_TRUE(SaveKey(thePath, "1"));
    EXPECT_EQ(1, CountFiles(theFolder.mPath)) << "the next save removes what is left";
}

// As on a file system without owners, modes and locks, with what another user has left.
TEST(zoConfigFileTest, SavesWhereNothingCanBeSet)
{
    const ScratchFolder theFolder;
    const std::string thePath = theFolder.mPath + "/device.conf";
    const std::string thePrefix = theFolder.mPath + "/.device.conf.zoConfigFile-0123456789ABCDE";
    std::ofstream(thePath) << "";
    ASSERT_EQ(0, chmod(thePath.c_str(), 0666));
    ASSERT_EQ(0, chmod(theFolder.mPath.c_str(), 0777));
    for (const long theAge : { 1, 8 })
    {
        const std::string theLeft = thePrefix + std::to_string(theAge);
        const struct timespec theTime = { time(nullptr) - theAge * 10, 0 };
        const struct timespec theTimes[] = { theTime, theTime };
        std::ofstream(theLeft.c_str()) << "left";
        ASSERT_EQ(0, chmod(theLeft.c_str(), 0));
        ASSERT_EQ(0, utimensat(AT_FDCWD, theLeft.c_str(), theTimes, 0));
    }
    RunInChildProcess(BecomeHelpless, [&] { EXPECT_TRUE(SaveKey(thePath, "1")); });
    if (IsSkipped()) { return; }
    EXPECT_EQ("[s]\nk=1\n", theFolder.Read("device.conf"));
    EXPECT_EQ(0644u, ModeOf(thePath)) << "a new file's";
    EXPECT_TRUE(std::filesystem::exists(thePrefix + "1"));
    EXPECT_FALSE(std::filesystem::exists(thePrefix + "8")) << "older than a minute";
}

// In a folder that can't be listed, whose own path can't be found out.
TEST(zoConfigFileTest, SavesWhereItCanOnlyWrite)
{
    const ScratchFolder theFolder;
    const std::string theInner = theFolder.mPath + "/inner";
    std::filesystem::create_directory(theInner);
    const int theDescriptor = open(theInner.c_str(), O_PATH | O_CLOEXEC);
    ASSERT_EQ(0, chmod(theInner.c_str(), 0333) | chmod(theFolder.mPath.c_str(), 0));
    RunInChildProcess(BecomeHelpless,
                      [&]
                      {
        EXPECT_EQ(0, fchdir(theDescriptor));
        EXPECT_TRUE(SaveKey("device.conf", "1"));
    });
    close(theDescriptor);
    ASSERT_EQ(0, chmod(theFolder.mPath.c_str(), 0700) | chmod(theInner.c_str(), 0700));
    if (IsSkipped()) { return; }
    EXPECT_EQ("[s]\nk=1\n", theFolder.Read("inner/device.conf"));
}

TEST(zoConfigFileTest, LosesNothingWhenItFails)
{
    const ScratchFolder theFolder;
    const std::string kFolder = theFolder.mPath;
    ASSERT_EQ(0, mkfifo((kFolder + "/pipe").c_str(), 0600));
    ASSERT_EQ(0, symlink("loop", (kFolder + "/loop").c_str()));
    ASSERT_EQ(0, symlink("none/device.conf", (kFolder + "/dangling").c_str()));
    const std::pair<std::string, const char*> kCases[] = {
        { kFolder, "can't be read" },           // a folder
        { kFolder + "/pipe", "can't be read" }, // nobody writes to it
        { kFolder + "/loop", "can't be read" },
        { kFolder + "/dangling", "none/device.conf' can't be written" },
        { kFolder + "/none/device.conf", "can't be written" }, // no folder to write to
    };
    for (const auto& [thePath, theMessages] : kCases)
    {
        const LogCatcher theLog;
        EXPECT_FALSE(SaveKey(thePath, "new")) << thePath;
        EXPECT_NE(std::string::npos, theLog.mText.find(theMessages)) << theLog.mText;
        EXPECT_EQ("1/0 ", theLog.mText.substr(0, 4));
    }
    EXPECT_EQ(1, zoConfigFile_Save(ConfigFile(zoConfigFile_New(nullptr))));
    zoConfigFile_Delete(nullptr);
}

TEST(zoConfigFileTest, SubstitutesTheHostName)
{
    char theHostName[256] = "";
    ASSERT_EQ(0, gethostname(theHostName, sizeof(theHostName) - 1));
    const std::string kName = theHostName;
    const Config theConfig("[s]\nname=%HOSTNAME%: %HOSTNAME%HOSTNAME%\n");
    EXPECT_EQ(kName + ": " + kName + "HOSTNAME%",
              Taken(zoConfigFile_GetStringWithSubstitution(theConfig, "s", "name", nullptr,
                                                           zoStringSubstitution_Replace_HostName)));
    EXPECT_EQ("d" + kName, Taken(zoConfigFile_GetStringWithSubstitution(theConfig, "s", "x", "d%HOSTNAME%",
                                                                        zoStringSubstitution_Replace_HostName)));
    EXPECT_EQ(nullptr, zoConfigFile_GetStringWithSubstitution(theConfig, "s", "x", nullptr,
                                                              zoStringSubstitution_Replace_HostName));
}
