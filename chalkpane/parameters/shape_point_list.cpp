#include "chalkpane/parameters/shape_point_list.h"

#include <algorithm>

#include "chalkpane/parameters/animation/bezier.h"

namespace chalkpane {

namespace {

struct PointDefinitions {
    ParameterDef point{"Point", "Shape Point", ParameterType::doublePair, 0};
    ParameterDef handle{"Handle", "Shape Handle", ParameterType::doublePair, 1};
};

// Shared by all points of all lists and, like every declaration, never freed.
const PointDefinitions& definitions() {
    static const auto& both = *new PointDefinitions;
    return both;
}

DoublePair sum(const DoublePair& a, const DoublePair& b) { return {a.x + b.x, a.y + b.y}; }

}  // namespace

ShapePoint::ShapePoint()
    : point(&definitions().point), inHandle(&definitions().handle), outHandle(&definitions().handle) {}

DoublePair ShapePoint::getInHandle() const { return sum(point.stored(), inHandle.stored()); }
DoublePair ShapePoint::getOutHandle() const { return sum(point.stored(), outHandle.stored()); }

void ShapePoint::getPoint(double& outX, double& outY) const {
    outX = getPoint().x;
    outY = getPoint().y;
}

void ShapePoint::getInHandle(double& outX, double& outY) const {
    outX = getInHandle().x;
    outY = getInHandle().y;
}

void ShapePoint::getOutHandle(double& outX, double& outY) const {
    outX = getOutHandle().x;
    outY = getOutHandle().y;
}

void ShapePoint::setPoint(double x, double y) { point.store({x, y}, true); }

void ShapePoint::setInHandle(double x, double y) { inHandle.store({x - point.stored().x, y - point.stored().y}, true); }

void ShapePoint::setOutHandle(double x, double y) {
    outHandle.store({x - point.stored().x, y - point.stored().y}, true);
}

void ShapePoint::write(TextOut& out) const {
    constexpr const char* margin = "\t\t\t";
    const auto line = [&](const DoubleXYValue& part) {
        part.writeTo(out);
        out << ";\n";
    };
    out << (out.isStream() ? margin : "") << "Point ";
    line(point);
    const DoublePair onPoint{};
    if (inHandle.stored() == onPoint && outHandle.stored() == onPoint) return;
    for (const DoubleXYValue* handle : {&inHandle, &outHandle}) {
        out << (out.isStream() ? margin : "");
        line(*handle);
    }
}

bool ShapePoint::read(TextScanner& scanner) {
    if (!point.readText(scanner) || !scanner.expectPunctuation(';')) return false;
    if (!inHandle.readText(scanner)) {
        inHandle.store({}, true);
        outHandle.store({}, true);
        return true;
    }
    return scanner.expectPunctuation(';') && outHandle.readText(scanner) && scanner.expectPunctuation(';');
}

void ShapePointList::write(TextOut& out) const {
    if (!points.empty()) out << "\n";  // between the set word and the first point: "truePoint" would be one word
    for (const auto& point : points) point->write(out);
}

bool ShapePointList::read(TextScanner& scanner) {
    points.clear();
    while (scanner.expectPoint())
        if (!append().read(scanner)) return false;
    return true;
}

ShapePointList::ShapePointList() {
    insert(0.0, 0.0);
    insert(1.0, 1.0);
}

ShapePointList::ShapePointList(const ShapePointList& source) { *this = source; }

ShapePointList& ShapePointList::operator=(const ShapePointList& source) {
    if (this == &source) return *this;
    points.clear();
    points.reserve(source.size());
    for (const auto& original : source.points) {
        ShapePoint& copy = append();
        const DoublePair in = original->getInHandle();
        const DoublePair out = original->getOutHandle();
        copy.setPoint(original->getPoint().x, original->getPoint().y);
        copy.setInHandle(in.x, in.y);
        copy.setOutHandle(out.x, out.y);
    }
    return *this;
}

bool ShapePointList::equals(const ShapePointList& other) const {
    return std::equal(points.begin(), points.end(), other.points.begin(), other.points.end(),
                      [](const auto& a, const auto& b) {
                          return a->getPoint() == b->getPoint() && a->getInHandle() == b->getInHandle() &&
                                 a->getOutHandle() == b->getOutHandle();
                      });
}

ShapePoint& ShapePointList::append() { return *points.emplace_back(std::make_unique<ShapePoint>()); }

ShapePoint& ShapePointList::insert(double x, double y) {
    auto added = std::make_unique<ShapePoint>();
    added->setPoint(x, y);
    added->setInHandle(x, y);
    added->setOutHandle(x, y);
    const auto place = std::find_if(points.begin(), points.end(), [x](const auto& p) { return p->getPoint().x > x; });
    return **points.insert(place, std::move(added));
}

double ShapePointList::evaluate(double x) const {
    if (points.empty()) return emptyValue;
    if (x <= points.front()->getPoint().x) return points.front()->getPoint().y;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const ShapePoint& left = *points[i - 1];
        const ShapePoint& right = *points[i];
        const DoublePair p = left.getPoint();
        const DoublePair q = right.getPoint();
        if (q.x == x) return q.y;
        if (!(q.x > x)) continue;
        if (stepped) return p.y;
        const DoublePair o = left.getOutHandle();
        const DoublePair in = right.getInHandle();
        const double y = bezierAt(solveBezierParameter(p.x, o.x, in.x, q.x, x), p.y, o.y, in.y, q.y);
        return std::clamp(y, 0.0, 1.0);
    }
    return points.back()->getPoint().y;
}

}  // namespace chalkpane
