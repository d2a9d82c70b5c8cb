#pragma once

class QWidget;

namespace tarnwick {

/// Gives every named child widget of root (and root itself) its object name as accessible
/// description, so screen readers and UI automation can find "GrdMain", "TxtPrice" …; the
/// object names themselves are not exported over the accessibility bus.
void exposeObjectNames(QWidget *root);

} // namespace tarnwick
