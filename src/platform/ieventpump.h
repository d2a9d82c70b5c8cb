#pragma once

namespace tarnwick {

/// Lets the window system process what is pending, once, so that a long loop keeps the
/// window painted and responsive.
class IEventPump
{
public:
    virtual ~IEventPump() = default;

    virtual void processPendingEvents() = 0;
};

} // namespace tarnwick
