#pragma once

class QAbstractItemView;

namespace tarnwick {

/// Tells assistive tools which entry of view is current, as a view does when its current entry
/// changes with the keyboard in it. Qt's views say only their own name when the keyboard comes
/// back to them (after a dialog, Down from a search box, F6): a screen reader heard "Products
/// table" or "Index list" and not which product or entry. Nothing without a current entry, or
/// while no assistive tool listens.
void announceCurrentItem(QAbstractItemView *view);

} // namespace tarnwick
