#pragma once

#include <UPnP/Stack/ILibChain.h>

// A chain with a clock that Pass alone moves.
struct TestChain
{
    TestChain()
    {
        ILibLifeTime_SetClock(
            mLifeTime, [](void* aClock) { return *static_cast<uint64*>(aClock); }, &mClock);
    }
    ~TestChain() { ILibChain_Delete(mChain); }
    TestChain& operator=(TestChain&&) = delete; // which rules out copies, too

    void Add(void* aData, int aMilliseconds, ILibLifeTime_Callback_t aCallback,
             ILibLifeTime_Callback_t aDestroyCallback = nullptr)
    {
        ILibLifeTime_AddEx(mLifeTime, aData, aMilliseconds, aCallback, aDestroyCallback);
    }
    void Pass(uint64 aMilliseconds)
    {
        mClock += aMilliseconds;
        ILibChain_RunOnce(mChain, 0);
    }

    uint64 mClock = 1000000;
    ILibBaseChain* mChain = ILibChain_New();
    ILibLifeTime* mLifeTime = ILibChain_GetLifeTime(mChain);
};
