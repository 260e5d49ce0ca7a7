#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "chalkpane/parameters/compound_values.h"

namespace chalkpane {

// A point of a curve with its two Bezier handles. Handles are given and answered as absolute places and kept as offsets
// from the point, so they move with it. Storing makes no undo record.
class ShapePoint {
public:
    ShapePoint();  // all at 0, nothing set

    void getPoint(double& outX, double& outY) const;
    void setPoint(double x, double y);
    void getInHandle(double& outX, double& outY) const;
    void setInHandle(double x, double y);
    void getOutHandle(double& outX, double& outY) const;
    void setOutHandle(double x, double y);

    DoublePair getPoint() const { return point.stored(); }
    DoublePair getInHandle() const;
    DoublePair getOutHandle() const;

    void write(TextOut& out) const;
    // False where the text does not fit. Without handles both lie on the point.
    bool read(TextScanner& scanner);

private:
    DoubleXYValue point;
    DoubleXYValue inHandle;  // offsets
    DoubleXYValue outHandle;
};

// A curve of y against x. A fresh one is the identity: (0, 0) to (1, 1), handles on their points.
class ShapePointList {
public:
    ShapePointList();
    // KEEP: a copy takes the points alone, anew from their absolute places; `stepped` and `emptyValue` stay as they are
    // in the list that is written, and as on a fresh list in one that is made.
    ShapePointList(const ShapePointList& source);
    ShapePointList& operator=(const ShapePointList& source);
    ~ShapePointList() = default;

    bool stepped = false;     // hold the left y across each span
    double emptyValue = 0.0;  // the answer of a list without points

    // Same number of points with the same absolute places, exactly; `stepped` and `emptyValue` do not count.
    bool equals(const ShapePointList& other) const;
    friend bool operator==(const ShapePointList& a, const ShapePointList& b) { return a.equals(b); }

    // y at x; outside the points that of the nearest end. Clamped to 0 .. 1 between points only: a point answers its
    // own y.
    double evaluate(double x) const;

    void clear() { points.clear(); }
    std::size_t size() const { return points.size(); }
    ShapePoint& operator[](std::size_t index) { return *points[index]; }
    const ShapePoint& operator[](std::size_t index) const { return *points[index]; }
    // One line per point and per handle. Reading replaces the points.
    void write(TextOut& out) const;
    bool read(TextScanner& scanner);

    // At the end; the caller keeps x ascending.
    ShapePoint& append();
    // Where its x belongs, behind equal ones; handles on the point.
    ShapePoint& insert(double x, double y);

private:
    std::vector<std::unique_ptr<ShapePoint>> points;  // ascending x
};

}  // namespace chalkpane
