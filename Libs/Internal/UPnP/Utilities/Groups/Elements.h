#pragma once

/* Elements and attributes of the group documents, whose names are compared without regard to case. */

#include <Shared/ASCII.h>
#include <Shared/QualifiedName.h>
#include <UPnP/Stack/ILibXML.h>
#include <string_view>

namespace Groups
{

/** A parsed document, whose nodes point into the text. */
struct Document
{
    explicit Document(const char* aText);
    ~Document() { ILibDestructXMLNodeList(mNodes); }
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    ILibXMLNode* mNodes; // NULL without any
    bool mfIsWellFormed;
};

/** The attributes of an element, in the document's order. */
struct Attributes
{
    explicit Attributes(ILibXMLNode* anElement) : mFirst(ILibGetXMLAttributes(anElement)) {}
    ~Attributes() { ILibDestructXMLAttributeList(mFirst); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    ILibXMLAttribute* mFirst;
};

inline std::string_view ValueOf(const ILibXMLAttribute* anAttribute)
{
    return { anAttribute->Value, static_cast<size_t>(anAttribute->ValueLength) };
}

/** @param aNode may be NULL. @return true for the start tag of an element of that name, whatever its prefix. */
bool IsStartTag(const ILibXMLNode* aNode, std::string_view aName);

/** @param aNode aRoot or a node inside. @return the next element of that name inside aRoot, at any depth; NULL when
 *          there is none. */
ILibXMLNode* NextElement(const ILibXMLNode* aRoot, const ILibXMLNode* aNode, std::string_view aName);

/** @return the index of the attribute's name, prefix included, among the names; Count when it is another. */
template <size_t Count>
inline size_t FindName(const ILibXMLAttribute* anAttribute, const std::string_view (&aNames)[Count])
{
    const std::string_view theName = Shared::QualifiedName(anAttribute);
    size_t theIndex = 0;
    while (theIndex < Count && !Shared::EqualsIgnoringCase(theName, aNames[theIndex]))
        ++theIndex;
    return theIndex;
}

} // namespace Groups
