#pragma once

#include "platform/ieventpump.h"

namespace tarnwick {

/// Processes the application's pending events once, through QCoreApplication.
class QtEventPump : public IEventPump
{
public:
    void processPendingEvents() override;
};

} // namespace tarnwick
