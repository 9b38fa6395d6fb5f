#pragma once

/* The choice of a resource explained: for each resource of an object how well it suits a renderer, and why it was
 * chosen or not. It is the choice that CDSResourceInfo.h describes, made by the same functions. */

#include <UPnP/Utilities/CDSResourceInfo.h>
#include <UPnP/Utilities/Export.h>
#include <zoOS/zoTypes.h>
#include <zoltTools/zoDLNAProtocolInfoList.h>
#include <zoltTools/zoPackedData.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The stages of matching, from the closest on. The earliest stage at which a resource matches decides. */
enum
{
    kCDSResourceStage_None = 0,         /* the resource does not take part */
    kCDSResourceStage_Profile = 1,      /* its DLNA profile is one of the renderer's */
    kCDSResourceStage_MimeType = 2,     /* its MIME type is, and no other profile is named */
    kCDSResourceStage_WildCard = 3,     /* its MIME type is covered by a wild card, and no other profile is named */
    kCDSResourceStage_OtherProfile = 4, /* its MIME type is one of the renderer's, its profile is not */
    kCDSResourceStage_Any = 5,          /* nothing of it is */
    kCDSResourceStage_Count = 6
};

/* Why a resource was not chosen: the first of these that holds, in the order in which the choice looks. */
enum
{
    kCDSResourceReason_Chosen = 0,
    kCDSResourceReason_NoURI = 1,              /* it has neither protocol info nor URI */
    kCDSResourceReason_Thumbnail = 2,          /* thumbnails are not considered */
    kCDSResourceReason_ConvertedLeftOut = 3,   /* it is converted, and originals are preferred */
    kCDSResourceReason_TransportMissing = 4,   /* the renderer has nothing of its transport protocol */
    kCDSResourceReason_TransportNotListed = 5, /* the scheme order does not cover its transport protocol */
    kCDSResourceReason_LaterStage = 6,         /* the chosen one matches at an earlier stage */
    kCDSResourceReason_NoProfile = 7,          /* the chosen one has a DLNA profile of the renderer's */
    kCDSResourceReason_HostName = 8,           /* its host is a name, the chosen one's an IPv4 address */
    kCDSResourceReason_HostFarther = 9,        /* the chosen one's host is nearer to a target */
    kCDSResourceReason_TransportWorse = 10,    /* the scheme order has the chosen one's transport before its own */
    kCDSResourceReason_Converted = 11,         /* it is converted, the chosen one is not */
    kCDSResourceReason_LaterInDocument = 12,   /* they are equal, and the chosen one comes first */
    kCDSResourceReason_Count = 13
};

/* What was found out about a resource. */
typedef struct CDSResourceReport_t
{
    int mStage;            /* kCDSResourceStage_*: the first stage at which it matches */
    int mConfidence;       /* kRendererPlayConfidence_* of that stage; WillNot without one */
    int mReason;           /* kCDSResourceReason_* */
    int mLocality;         /* how near its host is to the nearest target: 3, 2 or 1 when they share this many first
                              octets, 0 when they share none or there is no target; -1 when it is not an IPv4 address */
    int mfIsConverted;     /* 1 when its protocol info says so (DLNA.ORG_CI), else 0 */
    int mfHasProtocolInfo; /* 0 when it has none: then it matches at the first stage */
} CDSResourceReport_t;

/**
 * Makes the choice of CDSResourceInfo_ChooseResource and tells how it came about. Takes time as the choice does, and no
 * memory but the result and what the choice takes. Arguments are those of that function.
 * @param aCount out, may be NULL: the number of resources.
 * @return a report for each resource, in their order, released with free; NULL when there are no resources. One has the
 *         reason Chosen, unless there is no choice.
 */
UPNPUTILITIES_API CDSResourceReport_t* CDSResourceInfo_NewReport(const zoPackedData_t* aResourceInfo,
                                                                 const zoDLNAProtocolInfoList_t* aSinkProtocolInfoList,
                                                                 int aFlags, const char* aPreferredSchemeOrder,
                                                                 const uint32* aTargetIPAddresses,
                                                                 uint32 aTargetIPCount, uint32* aCount);

/** @return a stage in words for a user ("DLNA profile"), constant; "" for what is not a stage. */
UPNPUTILITIES_API const char* CDSResourceInfo_GetStageText(int aStage);
/** @return a reason in words for a user ("converted"), constant; "" for what is not a reason. */
UPNPUTILITIES_API const char* CDSResourceInfo_GetReasonText(int aReason);

#ifdef __cplusplus
}
#endif
