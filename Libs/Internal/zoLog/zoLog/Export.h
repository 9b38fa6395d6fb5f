#pragma once

/* libzoLog.so: what carries this mark is visible outside the library; everything else is built hidden. */
#define ZOLOG_API __attribute__((visibility("default")))
