#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

/* Inputs that cost as much as a stranger can make them cost. */

/* Measures one operation. */
class Meter
{
public:
    /* Runs and measures it. What it leaves allocated is what it keeps.
     * @param anInputSize  the bytes of all its inputs together. */
    void Run(size_t anInputSize, const std::function<void()>& anOperation);

    size_t mInputSize = 0;
    double mMicroseconds = 0; // of processor time
    size_t mPeak = 0;         // bytes of heap beyond what was there before
    size_t mKept = 0;
};

struct Shape
{
    std::string mName;
    double mMaxPeak; // as a multiple of the input
    double mMaxKept;
    std::function<void(size_t aSize, Meter& aMeter)> mRun; // makes inputs of about that size and runs the operation
};

const double kMaxPeakOfObject = sizeof(void*) == 8 ? 64 : 56;
const double kMaxPeakOfBrowseResult = sizeof(void*) == 8 ? 128 : 96;
const double kMaxKeptOfBrowseResult = sizeof(void*) == 8 ? 100 : 80;

typedef std::vector<Shape> Shapes;

void AddDocumentShapes(Shapes& aShapes);
void AddChoiceShapes(Shapes& aShapes);
void AddRecordShapes(Shapes& aShapes);
void AddCallShapes(Shapes& aShapes);
void AddOtherShapes(Shapes& aShapes);
void AddProductShapes(Shapes& aShapes);

/* Appends aText, its "#" replaced by numbers from 0 on, until aSize bytes are there. */
std::string Fill(const std::string& aText, size_t aSize);
/* @return the address of something that must not be optimized away. */
inline void Use(const void* aResult) { asm volatile("" : : "r"(aResult) : "memory"); }
