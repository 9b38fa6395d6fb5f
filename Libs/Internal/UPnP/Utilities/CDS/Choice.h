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
Choice Choose(const Resources& aResources, const Renderer& aRenderer);
/** Chooses among what is not converted, and if the renderer may not play that, among all: a better confidence wins.
 *  @param aRenderer out: mfLeavingOutConverted tells which of the two choices it is. */
Choice ChooseOriginal(const Resources& aResources, Renderer* aRenderer);

// ---- What a choice is made of ----

/** The stages of matching from the closest on, counted from 0: those that ask the sink list, and a last one that takes
 *  everything. */
inline constexpr uint32 kLastStage = 4;
/** The confidence that each stage gives. */
extern const int kConfidences[kLastStage + 1];

/** @return the first stage at which a resource that is considered matches, of those before aLimit; aLimit when it
 *          matches at none of them.
 *  @param aLimit  at most kLastStage. */
uint32 FindStage(const Resource& aResource, const Renderer& aRenderer, uint32 aLimit);

/** True if, in a stage, a resource outweighs those without a DLNA profile. */
bool HasProfileWeight(uint32 aStage, const Resources& aResources, uint32 anIndex);
/** True if the resource can be chosen at all, as far as it does not depend on its transport protocol. */
bool IsConsidered(const Resource& aResource, const Renderer& aRenderer);
/** True if, in a stage, what is not converted comes before the rest. */
bool PutsUnconvertedFirst(uint32 aStage, const Renderer& aRenderer);
/** Puts those whose transport protocol suits to the front, the best one's first; equally good ones keep their order.
 *  @return their number. */
size_t RankByTransport(const Renderer& aRenderer, zoDLNAProtocolInfo_t** anInfos, size_t aCount);

} // namespace CDS
