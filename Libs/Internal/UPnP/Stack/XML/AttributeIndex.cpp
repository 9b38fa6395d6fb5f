#include <UPnP/Stack/XML/AttributeIndex.h>

#include <Shared/QualifiedName.h>
#include <algorithm>
#include <string.h>

namespace XML
{

// By the lengths of the names first, which tells most apart.
static int Compare(std::string_view aLeft, std::string_view aRight)
{
    if (aLeft.size() != aRight.size()) { return aLeft.size() < aRight.size() ? -1 : 1; }
    return aLeft.empty() ? 0 : memcmp(aLeft.data(), aRight.data(), aLeft.size());
}

static int Compare(const ILibXMLAttribute* anAttribute, std::string_view aPrefix, std::string_view aName)
{
    const int theResult = Compare(Shared::LocalName(anAttribute), aName);
    return theResult != 0 ? theResult : Compare(Shared::Prefix(anAttribute), aPrefix);
}

void IndexAttributes(Document* aDocument, StartTag* aTag, size_t aCount)
{
    AttributeIndex* theIndex =
        reinterpret_cast<AttributeIndex*>(AllocateBlock(aDocument, sizeof(AttributeIndex) + aCount * sizeof(void*)));
    ILibXMLAttribute** theSorted = SortedAttributes(theIndex);
    *theIndex = { aTag->mAttributes, aCount };
    for (ILibXMLAttribute* theAttribute = aTag->mAttributes; theAttribute; theAttribute = theAttribute->Next)
        *theSorted++ = theAttribute;
    std::sort(SortedAttributes(theIndex), theSorted,
              [](const ILibXMLAttribute* aLeft, const ILibXMLAttribute* aRight)
              {
        const int theResult = Compare(aLeft, Shared::Prefix(aRight), Shared::LocalName(aRight));
        return theResult != 0 ? theResult < 0 : aLeft->Name < aRight->Name; // of equal ones the first counts
    });
    aTag->SetIndex(theIndex);
}

ILibXMLAttribute* FindAttribute(const StartTag* aTag, std::string_view aPrefix, std::string_view aName)
{
    AttributeIndex* theIndex = aTag->GetIndex();
    if (!theIndex)
    {
        ILibXMLAttribute* theAttribute = aTag->mAttributes;
        while (theAttribute && Compare(theAttribute, aPrefix, aName) != 0)
            theAttribute = theAttribute->Next;
        return theAttribute;
    }
    ILibXMLAttribute** theEnd = SortedAttributes(theIndex) + theIndex->mCount;
    ILibXMLAttribute** theFound = std::partition_point(SortedAttributes(theIndex), theEnd,
                                                       [aPrefix, aName](const ILibXMLAttribute* anAttribute)
                                                       { return Compare(anAttribute, aPrefix, aName) < 0; });
    return theFound != theEnd && Compare(*theFound, aPrefix, aName) == 0 ? *theFound : nullptr;
}

} // namespace XML
