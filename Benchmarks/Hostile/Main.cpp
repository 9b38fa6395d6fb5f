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
// that it takes, as a multiple of the input. Fails when a bound is passed. Time also grows because a larger input fits
// no longer in a processor's caches; so where it grows too fast, callgrind counts instructions, and these decide.
// With --memory SIZE only the heap, of one size, which is the same every time.

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

// The instructions of one run, counted by callgrind in a process of its own; 0 without callgrind.
double CountInstructions(const char* aProgram, size_t aShape, size_t aSize)
{
    const std::string theCommand =
        "valgrind --tool=callgrind --callgrind-out-file=/dev/null --toggle-collect='Meter::Run*' '" +
        std::string(aProgram) + "' --once " + std::to_string(aShape) + " " + std::to_string(aSize) + " 2>&1";
    FILE* theOutput = popen(theCommand.c_str(), "r");
    double theCount = 0;
    char theLine[1024];
    while (theOutput && fgets(theLine, sizeof(theLine), theOutput))
        sscanf(theLine, "==%*d== Collected : %lf", &theCount);
    if (theOutput) { pclose(theOutput); }
    return theCount;
}

// How many times as many instructions a size takes as the one before, at most; 0 when they can't be counted.
double MeasureGrowthOfInstructions(const char* aProgram, size_t aShape)
{
    double theGrowth = 0, thePrevious = 0;
    for (const size_t theSize : kSizes)
    {
        const double theCount = CountInstructions(aProgram, aShape, theSize);
        if (theCount == 0) { return 0; }
        if (thePrevious > 0) { theGrowth = std::max(theGrowth, theCount / thePrevious); }
        thePrevious = theCount;
    }
    return theGrowth;
}

bool Report(const char* aProgram, const Shapes& aShapes, size_t anIndex)
{
    const Shape& theShape = aShapes[anIndex];
    bool fIsWithin = true;
    double thePeak = 0, theKept = 0, theGrowth = 0, thePrevious = 0;
    printf("%-58s", theShape.mName.c_str());
    for (const size_t theSize : kSizes)
    {
        if (thePrevious > kLongestMicroseconds)
        {
            printf(" %7s", "-");
            fIsWithin = false;
            continue;
        }
        const Meter theMeter = Measure(theShape, theSize);
        const double theMicroseconds = PerByte(theMeter.mMicroseconds, theMeter);
        printf(" %7.3f", theMicroseconds);
        fflush(stdout);
        if (thePrevious > 0) { theGrowth = std::max(theGrowth, theMeter.mMicroseconds / thePrevious); }
        thePrevious = theMeter.mMicroseconds;
        thePeak = std::max(thePeak, PerByte(static_cast<double>(theMeter.mPeak), theMeter));
        theKept = std::max(theKept, PerByte(static_cast<double>(theMeter.mKept), theMeter));
        fIsWithin = fIsWithin && theMicroseconds <= kMaxMicrosecondsPerByte && IsWithinMemory(theShape, theMeter);
    }
    printf(" %7.1f %7.1f %7.1f", theGrowth, thePeak, theKept);
    if (fIsWithin && theGrowth > kMaxGrowth)
    {
        const double theInstructions = MeasureGrowthOfInstructions(aProgram, anIndex);
        printf("  instructions %.1f", theInstructions);
        fIsWithin = theInstructions > 0 && theInstructions <= kMaxGrowth;
    }
    printf("%s\n", fIsWithin ? "" : "  OVER");
    return fIsWithin;
}

void RunOnce(const Shape& aShape, size_t aSize)
{
    Meter theMeter;
    aShape.mRun(aSize, theMeter);
}

} // namespace

int main(int argc, char** argv)
{
    Shapes theShapes;
    AddDocumentShapes(theShapes);
    AddChoiceShapes(theShapes);
    AddRecordShapes(theShapes);
    AddCallShapes(theShapes);
    AddOtherShapes(theShapes);
    AddProductShapes(theShapes);
    setvbuf(stdout, nullptr, _IOLBF, 0);
    mallopt(M_MMAP_MAX, 0); // memory is touched for the first time in a run that does not count
    mallopt(M_TRIM_THRESHOLD, -1);
    _zoLog_Level = ZOLOGLEVEL_NONE;
    const auto GetNumber = [argv](int anIndex) { return strtoul(argv[anIndex], nullptr, 10); };
    if (argc == 4 && strcmp(argv[1], "--once") == 0)
    {
        RunOnce(theShapes.at(GetNumber(2)), GetNumber(3));
        return 0;
    }
    const bool fMemoryOnly = argc > 2 && strcmp(argv[1], "--memory") == 0;
    const size_t theSize = fMemoryOnly ? GetNumber(2) : 0;
    const char* theFilter = argc == (fMemoryOnly ? 4 : 2) ? argv[argc - 1] : "";
    if (fMemoryOnly) { printf("%-58s %7s %7s\n", "shape, memory per byte of input", "peak", "kept"); }
    else
    {
        printf("%-58s %7s %7s %7s %7s %7s %7s\n", "shape, microseconds and memory per byte of input", "64 KiB",
               "256 KiB", "1 MiB", "growth", "peak", "kept");
    }
    int theFailed = 0;
    int theCount = 0;
    for (size_t i = 0; i < theShapes.size(); ++i)
    {
        if (theShapes[i].mName.find(theFilter) == std::string::npos) { continue; }
        ++theCount;
        theFailed += !(fMemoryOnly ? ReportMemory(theShapes[i], theSize) : Report(argv[0], theShapes, i));
    }
    printf("%d of %d shapes over a bound\n", theFailed, theCount);
    return theFailed > 0 || theCount == 0;
}
