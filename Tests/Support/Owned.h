#pragma once

#include <utility>

// A record of the library's, released at the end.
template <typename Type, void (*Delete)(Type*)>
struct Owned
{
    Owned(Type* aRecord) : mRecord(aRecord) {}
    Owned(Owned&& anOther) : mRecord(std::exchange(anOther.mRecord, nullptr)) {}
    ~Owned() { Delete(mRecord); }
    operator Type*() const { return mRecord; }
    Type* operator->() const { return mRecord; }

    Type* mRecord;
};
