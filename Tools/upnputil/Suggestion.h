#pragma once

#include <string>
#include <vector>

/** @return ", did you mean "..."?" with the known word that a mistyped one is most like; "" when it is like none of
 * them. */
std::string Suggestion(const std::string& aWord, const std::vector<std::string>& aKnownWords);
