#pragma once

/* libUPnPStack.so: what carries this mark is visible outside the library; everything else is built hidden. */
#define UPNPSTACK_API __attribute__((visibility("default")))
