#pragma once

#include "shell/stringtable.h"

class QWidget;

namespace tarnwick {

/// Replaces the numeric captions of a window by their string-table entries when it loads:
/// the window's caption from its "Tag" property, then the text of labels, buttons and group
/// boxes, of menus and their items, each tab's caption and tool tip, each toolbar button's
/// tool tip and each list column header. A caption that is no number stays; a number the table
/// does not know leaves that one control as it is and the others are still replaced.
void LoadNumberedCaptions(QWidget *form, const CaptionLookup &lookup = &StringTable::LoadResString);

} // namespace tarnwick
