#pragma once

#include <QString>

namespace tarnwick {

/// The help viewer: shows a topic of the program's help file.
class IHelpViewer
{
public:
    virtual ~IHelpViewer() = default;

    /// Opens helpFile at the named topic ("Main"); false when the file cannot be shown.
    virtual bool showTopic(const QString &helpFile, const QString &topic) = 0;
    /// Opens helpFile at the topic with that context number (2020 for "Main").
    virtual bool showContext(const QString &helpFile, int contextNumber) = 0;
};

} // namespace tarnwick
