#include <UPnP/Utilities/UPnPDIDL.h>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <zoltTools/zoPackedData.h>

// PackedDataSeeds FOLDER DOCUMENT...: writes the records of each document, as blocks, into the folder: seeds for
// PackedDataFuzz, to be made again when blocks change their form.

namespace
{

bool WriteBlock(const std::filesystem::path& aPath, char* aBlock)
{
    zoPackedData_t* theRecord = zoPackedData_NewData(aBlock);
    const std::streamsize theSize = zoPackedData_GetMemoryUsage(theRecord);
    char* theBlock = zoPackedData_TakeData(theRecord);
    zoPackedData_Free(theRecord);
    std::ofstream theFile(aPath, std::ios::binary);
    theFile.write(theBlock, theSize);
    free(theBlock);
    return theFile.good();
}

} // namespace

int main(int argc, char** argv)
{
    for (int i = 2; i < argc; ++i)
    {
        std::ifstream theFile(argv[i], std::ios::binary);
        std::string theText(std::istreambuf_iterator<char>(theFile), {});
        char* theData = nullptr;
        char* theRes = nullptr;
        int theType;
        if (UPnPDIDL_ParseElements(theText.c_str(), &theData, &theRes, &theType) != kUPnPError_None)
        {
            std::cerr << argv[i] << ": no object\n";
            return 1;
        }
        const std::filesystem::path theName =
            std::filesystem::path(argv[1]) / std::filesystem::path(argv[i]).stem().string();
        if (!WriteBlock(theName.string() + "-entry", theData) || !WriteBlock(theName.string() + "-resources", theRes))
        {
            return 1;
        }
    }
    return 0;
}
