#pragma once

/* The rows of the tables of the stack's records. A row whose reader does not fit its field does not compile, nor does a
 * table without a row for each field of its record. */

#include <UPnP/Utilities/UPnPConfig.h>
#include <type_traits>

namespace Config
{

// A field of a record, of the type Type.
template <typename Type>
struct Field
{
    const char* mName;
    size_t mOffset;
};

template <typename Type>
constexpr UPnPConfigField_t Row(const Field<Type>& aField, uint8 aValue)
{
    UPnPConfigField_t theRow = {};
    theRow.mName = aField.mName;
    theRow.mOffset = static_cast<uint16>(aField.mOffset);
    theRow.mSize = static_cast<uint8>(sizeof(Type));
    theRow.mValue = aValue;
    return theRow;
}

// ---- Numbers ----

// Of a reader. A device's own configuration file need not take a const one.
template <typename File, typename Number>
constexpr Number NumberOf(Number (*)(File*, const char*, const char*, Number));

// A reader with the one signature that all rows share.
template <auto kReader>
uint32 ReadNumber(zoConfigFile* aConfigFile, const char* aSection, const char* aKey, uint32 aDefaultValue)
{
    using Number = decltype(NumberOf(kReader));
    return static_cast<uint32>(kReader(aConfigFile, aSection, aKey, static_cast<Number>(aDefaultValue)));
}

/** A field that kReader reads: it has the reader's type, or is a size_t that a uint32 is stored in. */
template <auto kReader, typename Type>
constexpr UPnPConfigField_t Number(const Field<Type>& aField, const char* aKey, uint32 aDefault = 0)
{
    using Number = decltype(NumberOf(kReader));
    static_assert(std::is_same_v<Type, Number> || (std::is_same_v<Type, size_t> && std::is_same_v<Number, uint32>),
                  "the reader's number has another type than the field");
    UPnPConfigField_t theRow = Row(aField, kUPnPConfigValue_Number);
    theRow.mKey = aKey;
    theRow.mDefault = aDefault;
    theRow.mRead = ReadNumber<kReader>;
    return theRow;
}

template <auto kReader>
constexpr UPnPConfigField_t Address(const Field<uint32>& aField, const char* aKey)
{
    UPnPConfigField_t theRow = Number<kReader>(aField, aKey);
    theRow.mValue = kUPnPConfigValue_Address;
    return theRow;
}

// ---- Other fields ----

template <typename Type>
constexpr UPnPConfigField_t UserAgent(const Field<Type>& aField, const char* aKey, const char* aStandardPart,
                                      const char* aVersionKey = nullptr)
{
    static_assert(std::is_same_v<Type, char*> || std::is_same_v<Type, const char*>, "a user agent is a text");
    UPnPConfigField_t theRow = Row(aField, kUPnPConfigValue_UserAgent);
    theRow.mKey = aKey;
    theRow.mStandardPart = aStandardPart;
    theRow.mVersionKey = aVersionKey;
    return theRow;
}

constexpr UPnPConfigField_t Policy(const Field<zoSocketPolicy*>& aField)
{
    return Row(aField, kUPnPConfigValue_Policy);
}

/** Another argument of the fetch, which stores it. */
template <typename Type>
constexpr UPnPConfigField_t Argument(const Field<Type>& aField)
{
    static_assert(std::is_pointer_v<Type>, "arguments are borrowed");
    return Row(aField, kUPnPConfigValue_Argument);
}

template <typename Type>
constexpr UPnPConfigField_t NotRead(const Field<Type>& aField)
{
    return Row(aField, kUPnPConfigValue_None);
}

template <typename Type>
constexpr UPnPConfigField_t EmbeddedRecord(const Field<Type>& aField, uint8 aRecord)
{
    UPnPConfigField_t theRow = Row(aField, kUPnPConfigValue_Record);
    theRow.mRecord = aRecord;
    return theRow;
}

constexpr UPnPConfigField_t Embedded(const Field<ILibAsyncSocketConfig>& aField)
{
    return EmbeddedRecord(aField, kUPnPConfigRecord_AsyncSocket);
}

constexpr UPnPConfigField_t Embedded(const Field<ILibAsyncServerSocketConfig>& aField)
{
    return EmbeddedRecord(aField, kUPnPConfigRecord_AsyncServerSocket);
}

// ---- Tables ----

// Stands for a value of any type when the fields of a record are counted.
struct AnyValue
{
    template <typename Type>
    operator Type() const;
};

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmissing-field-initializers" // clang: counting leaves fields out on purpose
template <typename Record, typename... Values>
constexpr auto CanHold(int) -> decltype(Record{ Values()... }, bool())
{
    return true;
}
#pragma GCC diagnostic pop

template <typename Record, typename... Values>
constexpr bool CanHold(...)
{
    return false;
}

template <typename Record, typename... Values>
constexpr size_t CountFields()
{
    if constexpr (CanHold<Record, Values..., AnyValue>(0)) { return CountFields<Record, Values..., AnyValue>(); }
    else { return sizeof...(Values); }
}

// True if the rows are those of different fields in their order.
template <size_t kCount>
constexpr bool IsInOrder(const UPnPConfigField_t (&aRows)[kCount])
{
    for (size_t i = 1; i < kCount; ++i)
    {
        if (aRows[i].mOffset <= aRows[i - 1].mOffset) { return false; }
    }
    return true;
}

/** The table of a record; kRows has a row for each of its fields. */
template <typename Record, const auto& kRows>
constexpr UPnPConfigRecord_t Table(const char* aName)
{
    constexpr size_t kCount = std::extent_v<std::remove_reference_t<decltype(kRows)>>;
    static_assert(kCount == CountFields<Record>() && IsInOrder(kRows), "a field has no row, or two");
    return { aName, kRows, kCount, sizeof(Record) };
}

} // namespace Config
