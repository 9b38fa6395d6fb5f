#pragma once

/* The choice of the picture that is shown for an object: album art and thumbnail resources.
 * Profile lists are DLNA profiles separated by commas, best first; empty ones are skipped. */

#include <UPnP/Utilities/CDS/Resources.h>
#include <string_view>
#include <zoltTools/zoArray.h>

namespace CDS
{

struct AlbumArt
{
    const char* mURI; // "" when there is none
    const char* mProfile;
};

/** @return the profiles, or "JPEG_TN,PNG_TN" in place of "" and NULL. */
std::string_view ProfilesOrDefault(const char* aProfiles);

/** @param aPairs  URI and profile in turn; may be NULL. @return the best one, borrowed from aPairs. */
AlbumArt ChooseAlbumArt(const zoArray_t* aPairs, std::string_view aProfiles, Targets aTargets);

/** True if the album art's profile is in a text of profiles, as a part of it; false for "". */
bool HasListedProfile(const AlbumArt& anAlbumArt, std::string_view aProfiles);
/** True if the family of the album art's profile, its text up to the first "_" with a "_" after it, is in a text of
 *  profiles. */
bool HasListedFamily(const AlbumArt& anAlbumArt, std::string_view aProfiles);

/** @param aThumbnailType  a DLNA profile, without commas.
 *  @return the thumbnail of that profile, or else a picture of its MIME type without a profile; -1 when there is
 *          none. */
int ChooseThumbnailOfType(const Resources& aResources, std::string_view aThumbnailType, Targets aTargets);
/** @return the thumbnail of the first listed profile for which there is one; -1 when there is none. Takes time linear
 *  in resources and profiles together. */
int ChooseThumbnail(const Resources& aResources, std::string_view aProfiles, Targets aTargets);

} // namespace CDS
