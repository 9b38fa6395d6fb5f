#pragma once

/* The choice of the resource that suits a renderer best. */

#include <UPnP/Utilities/CDS/Resources.h>
#include <zoltTools/zoDLNAProtocolInfoList.h>

namespace CDS
{

/** What a choice is made for. */
struct Renderer
{
    const zoDLNAProtocolInfoList_t* mSinkList; // NULL when it is unknown
    const char* mSupportedProtocols;           // NULL: those of the sink list
    const char* mSchemeOrder;                  // NULL or "": any
    Targets mTargets;
    bool mfSearchingThumbnail;
    bool mfLeavingOutConverted;
};

struct Choice
{
    int mResource; // -1 when there is none
    int mConfidence;
};

/** @return the choice of the first stage that makes one. */
Choice Choose(Resources* aResources, const Renderer& aRenderer);
/** Chooses among what is not converted, and if the renderer may not play that, among all: a better confidence wins.
 *  @param aRenderer out: mfLeavingOutConverted tells which of the two choices it is. */
Choice ChooseOriginal(Resources* aResources, Renderer* aRenderer);

// ---- What a choice is made of ----

/** How close a match has to be. */
struct Stage
{
    bool mfUsesSinkList;
    int mMatchFlags;
    int mConfidence;
};

inline constexpr uint32 kStageCount = 5;
/** From the closest on; the last one takes everything. */
extern const Stage kStages[kStageCount];

/** The weight of a resource in a stage, a number:
 *
 *      bit 15    it has a DLNA profile that the renderer plays
 *      bit 4     its host is an IPv4 address (kIsAddressWeight)
 *      bits 0-1  the highest locality of its host, 0 to 3 */
inline constexpr uint32 kHasProfileWeight = 0x8000;

/** True if a resource that is considered matches in a stage. */
bool Matches(const Stage& aStage, const Resource& aResource, const Renderer& aRenderer);
uint32 Weigh(const Stage& aStage, const Resources& aResources, uint32 anIndex, Targets aTargets);
/** True if the resource can be chosen at all, as far as it does not depend on its transport protocol. */
bool IsConsidered(const Resource& aResource, const Renderer& aRenderer);
/** True if, in a stage, what is not converted comes before the rest. */
bool PutsUnconvertedFirst(const Stage& aStage, const Renderer& aRenderer);
/** Puts those whose transport protocol suits to the front, the best one's first; equally good ones keep their order.
 *  @return their number. */
size_t RankByTransport(const Renderer& aRenderer, zoDLNAProtocolInfo_t** anInfos, size_t aCount);

} // namespace CDS
