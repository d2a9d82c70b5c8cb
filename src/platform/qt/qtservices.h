#pragma once

#include "platform/appservices.h"
#include "platform/qt/qtclipboard.h"
#include "platform/qt/qtdesktopservices.h"
#include "platform/qt/qteventpump.h"
#include "platform/qt/qtfiledialogs.h"
#include "platform/qt/qthelpviewer.h"
#include "platform/qt/qtprocesslauncher.h"
#include "platform/qt/qtsettingsstore.h"

namespace tarnwick {

/// The desktop's own services as the program uses them, all but the message boxes, which the
/// caller brings: the program its real ones, a benchmark of the real windows its scripted
/// answers. Lives as long as the windows it serves.
class QtServices
{
public:
    AppServices with(IPrompts &prompts, const AppEnvironment &environment)
    {
        return { prompts, m_clipboard, m_settings, m_fileDialogs, m_launcher, m_help, m_events,
            environment, m_desktop };
    }

private:
    QtClipboard m_clipboard;
    QtSettingsStore m_settings;
    QtFileDialogs m_fileDialogs;
    QtProcessLauncher m_launcher;
    QtHelpViewer m_help;
    QtEventPump m_events;
    QtDesktopServices m_desktop;
};

} // namespace tarnwick
