#pragma once

/* libzoltTools.so: what carries this mark is visible outside the library; everything else is built hidden. */
#define ZOLTTOOLS_API __attribute__((visibility("default")))
