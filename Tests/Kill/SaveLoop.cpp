#include <cstdlib>
#include <cstring>
#include <string>
#include <zoltTools/zoConfigFile.h>

// SaveLoop PATH COUNT: saves a configuration COUNT times, with two contents by turns that are several pages long.
int main(int argc, char** argv)
{
    if (argc != 3) { return 2; }
    const std::string theValues[] = { std::string(50000, 'a'), std::string(70000, 'b') };
    zoConfigFile* theFile = zoConfigFile_New(argv[1]);
    const long theCount = std::strtol(argv[2], nullptr, 10);
    bool fIsSaved = true;
    for (long i = 0; i < theCount && fIsSaved; ++i)
    {
        zoConfigFile_SetString(theFile, "section", "key", theValues[i & 1].c_str());
        fIsSaved = zoConfigFile_Save(theFile) != 0;
    }
    zoConfigFile_Delete(theFile);
    return fIsSaved ? 0 : 1;
}
