#pragma once

#include <functional>
#include <string>

/* Receives what the library logs, for as long as it lives; after that messages go where they went before. */
class LogReceiver
{
public:
    /** @param aReceive is given each message, without the line ends at its end. */
    explicit LogReceiver(std::function<void(const std::string& aMessage)> aReceive);
    ~LogReceiver();
    LogReceiver(const LogReceiver&) = delete;
    LogReceiver& operator=(const LogReceiver&) = delete;

private:
    static LogReceiver* sCurrent;

    LogReceiver* const mBefore;
    const std::function<void(const std::string& aMessage)> mReceive;
};
