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
    const char* mSchemeOrder;
    Targets mTargets;
    bool mfSearchingThumbnail;
};

struct Choice
{
    int mResource; // -1 when there is none
    int mConfidence;
};

/** @return the choice of the first stage that makes one. */
Choice Choose(Resources* aResources, const Renderer& aRenderer);

} // namespace CDS
