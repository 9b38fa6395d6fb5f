#pragma once

#include "MediaObject.h"
#include "Output.h"

/** Prints the subtitles of an object, whoever wrote it, one for each URI, and what tells of each: the library's marker
 * in a resource's protocol info, a resource's MIME type, or a pair that devices write (sec:CaptionInfoEx,
 * sec:CaptionInfo, pv:subtitleFileUri). */
void PrintSubtitles(MediaObject& anObject, Output& anOutput);
