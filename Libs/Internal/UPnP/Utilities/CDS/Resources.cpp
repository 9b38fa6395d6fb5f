#include <UPnP/Utilities/CDS/Resources.h>

#include <Shared/Sizes.h>
#include <UPnP/Utilities/CDS/Record.h>
#include <UPnP/Utilities/UPnPConst.h>
#include <algorithm>
#include <stdlib.h>

namespace CDS
{

static void Read(const zoPackedData_t* aRecord, uint32 anIndex, Resource* aResource)
{
    size_t theSize = 0;
    const char* theText = zoPackedData_GetData(aRecord, anIndex, kCDSResourceInfo_ProtocolInfo, &theSize);
    aResource->mfHasProtocolInfo = theSize > 0 && *theText != '\0';
    aResource->mInfo = nullptr;
    if (aResource->mfHasProtocolInfo)
    {
        aResource->mInfo =
            zoDLNAProtocolInfo_NewInPlace(aResource->mMemory, sizeof(aResource->mMemory), theText, theSize);
    }
    else
    {
        const zoCString theURI = GetText(aRecord, anIndex, kCDSResourceInfo_URI);
        if (!theURI.IsEmpty()) { aResource->mInfo = zoDLNAProtocolInfo_NewFromURI(theURI.c_str()); }
    }
    zoDLNAProtocolInfo_SetUserData(aResource->mInfo, static_cast<int>(anIndex));
}

Resources::Resources(const zoPackedData_t* aRecord)
    : mRecord(aRecord), mCount(zoPackedData_GetEntryCount(aRecord)), mResources(mFewResources), mRoom(mFewInfos)
{
    if (mCount > kFew)
    {
        const size_t theSize = Shared::MultiplySizes(mCount, sizeof(Resource) + sizeof(zoDLNAProtocolInfo_t*));
        mResources = static_cast<Resource*>(zoMalloc(theSize));
        mRoom = reinterpret_cast<zoDLNAProtocolInfo_t**>(mResources + mCount);
    }
    for (uint32 i = 0; i < mCount; ++i)
        Read(aRecord, i, &mResources[i]);
}

Resources::~Resources()
{
    for (uint32 i = 0; i < mCount; ++i)
        zoDLNAProtocolInfo_Delete(mResources[i].mInfo);
    if (mResources != mFewResources) { free(mResources); }
}

const char* Resources::GetProfile(uint32 anIndex) const
{
    return mResources[anIndex].mfHasProtocolInfo ? zoDLNAProtocolInfo_GetProfile(mResources[anIndex].mInfo) : nullptr;
}

std::string_view Resources::GetURI(uint32 anIndex) const
{
    size_t theSize = 0;
    const char* theURI = zoPackedData_GetData(mRecord, anIndex, kCDSResourceInfo_URI, &theSize);
    return { theURI, theSize };
}

uint32 Resources::WeighHost(uint32 anIndex, Localities* aLocalities) const
{
    const uint32 theAddress = FindHostAddress(GetURI(anIndex));
    return theAddress != kNoAddress ? kIsAddressWeight + aLocalities->GetHighest(theAddress) : 0;
}

} // namespace CDS
