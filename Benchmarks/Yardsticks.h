#pragma once

#include <cstddef>
#include <string>

/* The same documents read by other libraries, where they are installed. Each function gives a number that says whether
 * it did its work. */

/** Parses the text in place. @return the number of resources. */
std::size_t PugixmlParse(std::string& aText);
/** Parses the text in place and copies out as strings the names and values of what the media object record holds: the
 *  object's attributes, its elements' names and texts, their attributes, and the root's declarations.
 *  @param aReserved  pairs for which the vector that takes them has room beforehand; 0 lets it grow.
 *  @return the number of resources. */
std::size_t PugixmlParseAndCopy(std::string& aText, std::size_t aReserved);
/** Builds the tree. @return the number of resources. */
std::size_t Libxml2Parse(const std::string& aText);

/** The same for a document of many objects: parses in place, builds the tree. @return the number of objects. */
std::size_t PugixmlCountObjects(std::string& aText);
std::size_t Libxml2CountObjects(const std::string& aText);
