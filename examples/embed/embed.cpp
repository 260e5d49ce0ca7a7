#include <cstdio>

#include <chalkpane/brush/basic_brush.h>

int main() {
    chalkpane::Image canvas(256, 256, chalkpane::Image::colourType, 0, 1);
    chalkpane::BasicBrush brush("Embedded");
    brush.SetTarget(&canvas);
    brush.SetSize(5);
    brush.SetColour({0x3FFF, 0, 0});
    chalkpane::Rect changed = brush.BeginStroke(40, 60, 1.0);
    changed = changed.Union(brush.EndStroke(200, 180, 1.0));
    std::printf("painted %d,%d to %d,%d\n", changed.x0, changed.y0, changed.x1, changed.y1);
}
