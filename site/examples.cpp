// Stands in the place of Picture.cpp in the programs that make the page's examples: what they would
// draw is written as text.

#include "Picture.h"

#include <animationmodel/json.h>

void write_svg(std::ostream& out, const std::string& /*title*/, const Kiv::Animation& animation,
               const PictureProgress& /*progress*/) {
    out << Kiv::animation_to_json(animation);
}
