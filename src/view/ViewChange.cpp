#include "view/ViewChange.h"

namespace quillon {

ViewChange& ViewChange::operator|=(const ViewChange& other) {
    const bool both = scrolled != 0 && other.scrolled != 0;
    redraw = redraw || other.redraw || both;
    scrolled = redraw ? 0 : scrolled + other.scrolled;
    newPlace = newPlace || other.newPlace;
    selection = selection || other.selection;
    return *this;
}

}  // namespace quillon
