#include "../CountedHeap.h"
#include "Shapes.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <malloc.h>
#include <zoLog/Log.h>

// What each shape costs: microseconds a byte of input at three sizes, how time grows from one to the next, and the heap
// that it takes, as a multiple of the input. With --memory SIZE only the heap, of one size, which is the same every
// time. Fails when a bound is passed.

static double Now()
{
    struct timespec theTime;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &theTime);
    return static_cast<double>(theTime.tv_sec) * 1e6 + static_cast<double>(theTime.tv_nsec) / 1e3;
}

void Meter::Run(size_t anInputSize, const std::function<void()>& anOperation)
{
    const size_t theUsed = sHeap.mUsed;
    sHeap.mPeak = sHeap.mUsed;
    const double theBegin = Now();
    anOperation();
    mMicroseconds = Now() - theBegin;
    mInputSize = anInputSize;
    mPeak = sHeap.mPeak - theUsed;
    mKept = sHeap.mUsed > theUsed ? sHeap.mUsed - theUsed : 0;
}

std::string Fill(const std::string& aText, size_t aSize)
{
    std::string theText;
    theText.reserve(aSize + aText.size() + 20);
    for (size_t i = 0; theText.size() < aSize; ++i)
    {
        for (const char theByte : aText)
        {
            if (theByte == '#') { theText += std::to_string(i); }
            else { theText += theByte; }
        }
    }
    return theText;
}

namespace
{

const size_t kSizes[] = { 64 * 1024, 256 * 1024, 1024 * 1024 };
const double kMaxMicrosecondsPerByte = 1;
const double kMaxGrowth = 5;             // when the input is four times as large
const double kGrowthCountsFrom = 0.1;    // microseconds a byte; below it caches and the kernel make the difference
const double kLongestMicroseconds = 4e6; // a larger input is not tried after that

double PerByte(double aFigure, const Meter& aMeter) { return aFigure / static_cast<double>(aMeter.mInputSize); }

// The fastest of a few runs; memory is the same in all.
Meter Measure(const Shape& aShape, size_t aSize)
{
    Meter theBest;
    for (int i = 0; i < 3 && theBest.mMicroseconds < kLongestMicroseconds / 10; ++i)
    {
        Meter theMeter;
        aShape.mRun(aSize, theMeter);
        if (i == 0 || theMeter.mMicroseconds < theBest.mMicroseconds) { theBest = theMeter; }
    }
    return theBest;
}

bool IsWithinMemory(const Shape& aShape, const Meter& aMeter)
{
    return PerByte(static_cast<double>(aMeter.mPeak), aMeter) <= aShape.mMaxPeak &&
           PerByte(static_cast<double>(aMeter.mKept), aMeter) <= aShape.mMaxKept;
}

bool ReportMemory(const Shape& aShape, size_t aSize)
{
    Meter theMeter;
    aShape.mRun(aSize, theMeter);
    const bool fIsWithin = IsWithinMemory(aShape, theMeter);
    printf("%-58s %7.1f %7.1f%s\n", aShape.mName.c_str(), PerByte(static_cast<double>(theMeter.mPeak), theMeter),
           PerByte(static_cast<double>(theMeter.mKept), theMeter), fIsWithin ? "" : "  OVER");
    return fIsWithin;
}

bool Report(const Shape& aShape)
{
    bool fIsWithin = true;
    double thePeak = 0, theKept = 0, theGrowth = 0, thePrevious = 0, theMicroseconds = 0;
    printf("%-58s", aShape.mName.c_str());
    for (const size_t theSize : kSizes)
    {
        if (thePrevious > kLongestMicroseconds)
        {
            printf(" %7s", "-");
            fIsWithin = false;
            continue;
        }
        const Meter theMeter = Measure(aShape, theSize);
        theMicroseconds = PerByte(theMeter.mMicroseconds, theMeter);
        printf(" %7.3f", theMicroseconds);
        fflush(stdout);
        if (thePrevious > 0) { theGrowth = std::max(theGrowth, theMeter.mMicroseconds / thePrevious); }
        thePrevious = theMeter.mMicroseconds;
        thePeak = std::max(thePeak, PerByte(static_cast<double>(theMeter.mPeak), theMeter));
        theKept = std::max(theKept, PerByte(static_cast<double>(theMeter.mKept), theMeter));
        fIsWithin = fIsWithin && theMicroseconds <= kMaxMicrosecondsPerByte && IsWithinMemory(aShape, theMeter);
    }
    fIsWithin = fIsWithin && (theGrowth <= kMaxGrowth || theMicroseconds < kGrowthCountsFrom);
    printf(" %7.1f %7.1f %7.1f%s\n", theGrowth, thePeak, theKept, fIsWithin ? "" : "  OVER");
    return fIsWithin;
}

} // namespace

int main(int argc, char** argv)
{
    const bool fMemoryOnly = argc > 2 && strcmp(argv[1], "--memory") == 0;
    const size_t theSize = fMemoryOnly ? strtoul(argv[2], nullptr, 10) : 0;
    const char* theFilter = argc == (fMemoryOnly ? 4 : 2) ? argv[argc - 1] : "";
    Shapes theShapes;
    AddDocumentShapes(theShapes);
    AddChoiceShapes(theShapes);
    AddRecordShapes(theShapes);
    AddOtherShapes(theShapes);
    if (fMemoryOnly) { printf("%-58s %7s %7s\n", "shape, memory per byte of input", "peak", "kept"); }
    else
    {
        printf("%-58s %7s %7s %7s %7s %7s %7s\n", "shape, microseconds and memory per byte of input", "64 KiB",
               "256 KiB", "1 MiB", "growth", "peak", "kept");
    }
    setvbuf(stdout, nullptr, _IOLBF, 0);
    mallopt(M_MMAP_MAX, 0); // memory is touched for the first time in a run that does not count
    mallopt(M_TRIM_THRESHOLD, -1);
    _zoLog_Level = ZOLOGLEVEL_NONE;
    int theFailed = 0;
    for (const Shape& theShape : theShapes)
    {
        if (theShape.mName.find(theFilter) == std::string::npos) { continue; }
        theFailed += !(fMemoryOnly ? ReportMemory(theShape, theSize) : Report(theShape));
    }
    if (theFailed > 0) { printf("%d of %zu shapes over a bound\n", theFailed, theShapes.size()); }
    return theFailed > 0;
}
