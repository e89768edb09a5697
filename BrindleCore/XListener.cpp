#include "XListener.h"

#include "XSpeaker.h"

XListener::XListener() : itsState(XSpeaker::MakeListenerState(*this)) {}

XListener::XListener(const XListener &) : itsState(XSpeaker::MakeListenerState(*this)) {}

XListener::~XListener()
{
    XSpeaker::EndListening(itsState);
}

void XListener::Subscribe(const XSpeaker & aSpeaker)
{
    XSpeaker::AddSubscription(itsState, aSpeaker);
}

void XListener::Unsubscribe(const XSpeaker & aSpeaker)
{
    XSpeaker::RemoveSubscription(itsState, aSpeaker);
}

bool XListener::IsSubscribed(const XSpeaker & aSpeaker) const
{
    return XSpeaker::HasSubscription(itsState, aSpeaker);
}

UInt32 XListener::GetSubscriptionCount() const
{
    return XSpeaker::CountSubscriptions(itsState);
}

void XListener::StopListening()
{
    XSpeaker::EndListening(itsState);
}

void XListener::HandleMessage(const XMessage &) {}
