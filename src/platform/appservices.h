#pragma once

namespace tarnwick {

class AppEnvironment;
class IClipboard;
class IDesktopServices;
class IEventPump;
class IFileDialogs;
class IHelpViewer;
class IProcessLauncher;
class IPrompts;
class ISettingsStore;

/// The desktop services, built once in main() (or by a test) and handed to windows and
/// logic through their constructors.
struct AppServices
{
    IPrompts &prompts;
    IClipboard &clipboard;
    ISettingsStore &settings;
    IFileDialogs &fileDialogs;
    IProcessLauncher &launcher;
    IHelpViewer &help;
    IEventPump &events;
    const AppEnvironment &environment;
    IDesktopServices &desktop;
};

} // namespace tarnwick
