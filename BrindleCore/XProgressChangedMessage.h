#pragma once
// The message of XThreadProgressStrategy: the state of a task's progress. A newer message of the
// same speaker and task replaces one that waits in the queue, so a busy event loop gets only the
// latest state.

#include "XMessage.h"
#include "XString.h"
#include "XTypes.h"

class XProgressChangedMessage : public XMessage
{
public:
    XProgressChangedMessage(const XSpeaker * aSpeaker, UInt64 aTaskID, double aFraction,
                            const XString & aMessage, bool aFinished, double aRemainingSeconds = -1.0);
    XProgressChangedMessage(const XProgressChangedMessage &) = default;
    XProgressChangedMessage & operator=(const XProgressChangedMessage &) = default;
    ~XProgressChangedMessage() override;

    UInt64 GetTaskID() const { return itsTaskID; }
    // 0 to 1; below 0 when not known.
    double GetFraction() const { return itsFraction; }
    const XString & GetMessageA() const { return itsMessage; }
    // The task has ended (its last message).
    bool IsFinished() const { return itsFinished; }
    // Estimated seconds left; below 0 when not known.
    double GetRemainingSeconds() const { return itsRemainingSeconds; }

    XProgressChangedMessage * Clone() const override;
    XCoalesce ShouldCoalesceQueueMessage(const XMessage & aQueued) const override;

private:
    UInt64 itsTaskID;
    double itsFraction;
    XString itsMessage;
    bool itsFinished;
    double itsRemainingSeconds;
};
