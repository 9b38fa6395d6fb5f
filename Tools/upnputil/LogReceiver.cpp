#include "LogReceiver.h"

#include <utility>
#include <zoLog/Log.h>

LogReceiver* LogReceiver::sCurrent = nullptr;

LogReceiver::LogReceiver(std::function<void(const std::string& aMessage)> aReceive)
    : mBefore(sCurrent), mReceive(std::move(aReceive))
{
    sCurrent = this;
    zoLog_SetSink(
        [](int, int, const char*, int, const char* aText, void*)
        {
        const std::string theText = aText;
        sCurrent->mReceive(theText.substr(0, theText.find_last_not_of('\n') + 1));
        },
        nullptr);
}

LogReceiver::~LogReceiver()
{
    sCurrent = mBefore;
    if (!sCurrent) { zoLog_SetSink(nullptr, nullptr); }
}
