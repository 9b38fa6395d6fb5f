#pragma once

/* libUPnPUtilities.so: what carries this mark is visible outside the library; everything else is built hidden. */
#define UPNPUTILITIES_API __attribute__((visibility("default")))
