#pragma once

#include <QString>
#include <QtGlobal>

namespace tarnwick {

/// The commands the help viewer understands.
namespace HelpCommand {
constexpr int DisplayTopic = 0; ///< open the file (at its window type, if the path names one)
constexpr int HelpContext = 15; ///< open the topic whose context number is the data
} // namespace HelpCommand

/// The help viewer: given the help file's path (optionally "file>window type"), a command and
/// its data, it shows the program's help. Its result is not looked at by the program.
class IHelpViewer
{
public:
    virtual ~IHelpViewer() = default;

    virtual void display(const QString &path, int command, qint32 data) = 0;
};

} // namespace tarnwick
