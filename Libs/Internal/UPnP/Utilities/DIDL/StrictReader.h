#pragma once

#include <string_view>

namespace DIDL
{

// As UPnPDIDL_IsSendable.
bool IsSendable(std::string_view aText);

} // namespace DIDL
