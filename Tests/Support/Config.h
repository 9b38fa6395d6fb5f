#pragma once

#include "Owned.h"
#include <string>
#include <zoltTools/zoConfigFile.h>

typedef Owned<zoConfigFile, zoConfigFile_Delete> ConfigFile;

inline ConfigFile NewConfig(const std::string& aText) { return zoConfigFile_NewFromText(aText.data(), aText.size()); }
