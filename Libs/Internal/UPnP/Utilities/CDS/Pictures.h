#pragma once

/* The choice of the picture that is shown for an object: thumbnail resources and album art. */

#include <UPnP/Utilities/CDS/Choice.h>
#include <zoltTools/zoArray.h>

namespace CDS
{

/** @return a list of profiles, the default one in place of "". */
zoCString ProfilesOrDefault(const zoCString& aProfiles);

struct AlbumArt
{
    const char* mURI; // "" when there is none
    const char* mProfile;
};

/** @param aPairs  URI and profile in turn; NULL when there are none. @return the best one, borrowed from aPairs. */
AlbumArt ChooseAlbumArt(const zoArray_t* aPairs, const zoCString& aProfiles, Targets aTargets);

/** Chooses for a renderer that shows pictures of one profile, and perhaps others of its MIME type.
 *  @return the resource; -1 when there is none. */
int ChooseThumbnail(Resources* aResources, const char* aThumbnailType, Targets aTargets);
/** @return the thumbnail of the first listed profile that has one; -1 when none has. */
int ChooseThumbnailOfProfiles(const zoPackedData_t* aRecord, const zoCString& aProfiles, Targets aTargets);

} // namespace CDS
